/// Values as a file has them, and as JSON.
///
/// Writing<T> has `static std::optional<std::string> text(const T&)` and `json(const T&)`, empty
/// for a value that no text, or no JSON, can carry, and `static Facets facets()`, the JSON Schema
/// of the type.
#pragma once

#include <connector/configuration/typed/detail/Conversion.hpp>
#include <connector/configuration/typed/detail/Facets.hpp>
#include <connector/configuration/typed/detail/JsonText.hpp>
#include <connector/configuration/typed/detail/ListText.hpp>
#include <connector/configuration/typed/detail/NumberText.hpp>
#include <connector/configuration/typed/detail/Unicode.hpp>
#include <connector/configuration/typed/detail/UnitText.hpp>

#include <cmath>
#include <limits>

namespace connector::configuration::detail {

/// A type of the application's: only it knows how it is written.
template <typename T, typename = void>
struct Writing {
    static std::optional<std::string> text(const T&) { return std::nullopt; }
    static std::optional<std::string> json(const T&) { return std::nullopt; }
    static Facets facets() { return {{"type", "\"string\""}}; }
};

template <typename T>
inline constexpr bool isWritten = !HasConverter<T>::value;

/// Those whose JSON is a string with the text that a file has.
template <typename T>
struct TextWriting {
    static std::optional<std::string> json(const T& value) {
        const std::optional<std::string> text = Writing<T>::text(value);
        if (!text || !strictUtf16(*text))
            return std::nullopt;
        return jsonString(*text);
    }
};

template <>
struct Writing<bool> {
    static std::optional<std::string> text(bool value) { return value ? "true" : "false"; }
    static std::optional<std::string> json(bool value) { return text(value); }
    static Facets facets() { return {{"type", "\"boolean\""}}; }
};

template <typename T>
struct Writing<T, std::enable_if_t<isOptionInteger<T> && isWritten<T>>> {
    static std::optional<std::string> text(T value) { return std::to_string(value); }
    static std::optional<std::string> json(T value) { return std::to_string(value); }
    static Facets facets() {
        return {{"type", "\"integer\""},
                {"minimum", std::to_string(std::numeric_limits<T>::min())},
                {"maximum", std::to_string(std::numeric_limits<T>::max())}};
    }
};

template <typename T>
struct Writing<T, std::enable_if_t<std::is_floating_point_v<T> && isWritten<T>>> {
    static std::optional<std::string> text(T value) {
        return std::isfinite(value) ? std::optional<std::string>(numberText(value)) : std::nullopt;
    }
    static std::optional<std::string> json(T value) { return text(value); }
    static Facets facets() { return {{"type", "\"number\""}}; }
};

template <>
struct Writing<std::string> : TextWriting<std::string> {
    static std::optional<std::string> text(const std::string& value) { return value; }
    static Facets facets() { return {{"type", "\"string\""}}; }
};

template <>
struct Writing<std::u16string> : TextWriting<std::u16string> {
    static std::optional<std::string> text(const std::u16string& value) {
        return strictUtf8(value);
    }
    static Facets facets() { return {{"type", "\"string\""}}; }
};

template <typename Rep, typename Period>
struct Writing<std::chrono::duration<Rep, Period>,
               std::enable_if_t<isWritten<std::chrono::duration<Rep, Period>>>>
    : TextWriting<std::chrono::duration<Rep, Period>> {
    static std::optional<std::string> text(std::chrono::duration<Rep, Period> value) {
        const Rep count = value.count();
        if constexpr (std::is_floating_point_v<Rep>) {
            return std::isfinite(count) ? std::optional<std::string>(writeRoundedTicks(
                                              static_cast<double>(count), Period::num, Period::den))
                                        : std::nullopt;
        } else {
            const bool isNegative = count < 0;
            const auto bits = static_cast<std::uint64_t>(count);
            return writeTicks({isNegative, isNegative ? ~bits + 1 : bits}, Period::num,
                              Period::den);
        }
    }
    static Facets facets() {
        return {{"type", "\"string\""}, {"pattern", jsonString(durationPattern())}};
    }
};

template <>
struct Writing<ByteSize> : TextWriting<ByteSize> {
    static std::optional<std::string> text(ByteSize value) { return writeBytes(value.bytes); }
    static Facets facets() {
        return {{"type", "\"string\""}, {"pattern", jsonString(byteSizePattern())}};
    }
};

template <>
struct Writing<std::filesystem::path> : TextWriting<std::filesystem::path> {
    static std::optional<std::string> text(const std::filesystem::path& value) {
        return value.empty() ? std::nullopt : std::optional<std::string>(value.u8string());
    }
    static Facets facets() { return {{"type", "\"string\""}, {"minLength", "1"}}; }
};

template <typename T>
struct Writing<T, std::enable_if_t<std::is_enum_v<T> && isWritten<T>>> : TextWriting<T> {
    static std::optional<std::string> text(T value) {
        for (const auto& [name, enumerator] : OptionNames<T>::names) {
            if (enumerator == value)
                return std::string(name);
        }
        return std::nullopt;
    }
    static Facets facets() {
        std::string names;
        for (const auto& entry : OptionNames<T>::names)
            names.append(names.empty() ? "" : ",").append(jsonString(entry.first));
        return {{"type", "\"string\""}, {"enum", '[' + names + ']'}};
    }
};

template <typename T>
struct Writing<std::vector<T>, std::enable_if_t<isWritten<std::vector<T>>>> {
    static std::optional<std::string> text(const std::vector<T>& list) {
        std::vector<std::string> items;
        for (const auto& element : list) {
            std::optional<std::string> item = Writing<T>::text(element);
            if (!item)
                return std::nullopt;
            items.push_back(*std::move(item));
        }
        return writeList(items);
    }
    static std::optional<std::string> json(const std::vector<T>& list) {
        std::string items;
        for (const auto& element : list) {
            const std::optional<std::string> item = Writing<T>::json(element);
            if (!item)
                return std::nullopt;
            items.append(items.empty() ? "" : ",").append(*item);
        }
        return '[' + items + ']';
    }
    static Facets facets() {
        return {{"type", "\"array\""}, {"items", Writing<T>::facets().json()}};
    }
};

} // namespace connector::configuration::detail
