/// The conversion for each type: thin wrappers for Scalars.hpp.
///
/// Conversion<T> has `static std::optional<T> from(const OptionValue&)`, empty for a value that
/// does not convert, and `static std::string typeName()`.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/OptionValue.hpp>
#include <connector/configuration/typed/ByteSize.hpp>
#include <connector/configuration/typed/OptionConverter.hpp>
#include <connector/configuration/typed/OptionNames.hpp>
#include <connector/configuration/typed/detail/Scalars.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace connector::configuration::detail {

template <typename T, typename... Candidates>
inline constexpr bool isOneOf = (std::is_same_v<T, Candidates> || ...);

template <typename T>
inline constexpr bool isOptionInteger =
    std::is_integral_v<T> && !isOneOf<T, bool, char, wchar_t, char16_t, char32_t>;

template <typename T>
inline constexpr bool isAlternative =
    isOneOf<T, bool, int, unsigned int, double, std::u16string, std::string, std::vector<bool>,
            std::vector<int>, std::vector<unsigned int>, std::vector<double>,
            std::vector<std::string>, std::vector<std::u16string>>;

/// Whether the application provides its own conversion.
template <typename T, typename = void>
struct HasConverter : std::false_type {};
template <typename T>
struct HasConverter<T, std::void_t<decltype(OptionConverter<T>::typeName())>> : std::true_type {};

template <typename T, typename = void>
struct HasNames : std::false_type {};
template <typename T>
struct HasNames<T, std::void_t<decltype(OptionNames<T>::names)>> : std::true_type {};

/// The library's conversions. T is none of the types that an option can have where this is used.
template <typename T, typename = void>
struct BuiltInConversion {
    static_assert(sizeof(T) == 0, "options have no such type: specialise OptionConverter, or "
                                  "OptionNames for an enumeration");
};

/// Those which fill a place: `Function` takes the value and the place.
template <typename T, bool (*Function)(const OptionValue&, T&)>
struct PlaceConversion {
    static std::optional<T> from(const OptionValue& value) {
        std::optional<T> result(std::in_place);
        if (!Function(value, *result))
            result.reset();
        return result;
    }
};

template <>
struct BuiltInConversion<bool> : PlaceConversion<bool, toBool> {
    static std::string typeName() { return "bool"; }
};

template <>
struct BuiltInConversion<double> : PlaceConversion<double, toDouble> {
    static std::string typeName() { return "double"; }
};

template <>
struct BuiltInConversion<float> : PlaceConversion<float, toFloat> {
    static std::string typeName() { return "float"; }
};

template <>
struct BuiltInConversion<std::string> : PlaceConversion<std::string, toText> {
    static std::string typeName() { return "string"; }
};

template <>
struct BuiltInConversion<std::u16string> : PlaceConversion<std::u16string, toText> {
    static std::string typeName() { return "ustring"; }
};

template <typename T>
struct BuiltInConversion<T, std::enable_if_t<isOptionInteger<T>>> {
    static std::optional<T> from(const OptionValue& value) {
        using Limits = std::numeric_limits<T>;
        if constexpr (std::is_signed_v<T>) {
            std::int64_t number = 0;
            if (toSigned(value, Limits::min(), Limits::max(), number))
                return static_cast<T>(number);
        } else {
            std::uint64_t number = 0;
            if (toUnsigned(value, Limits::max(), number))
                return static_cast<T>(number);
        }
        return std::nullopt;
    }

    static std::string typeName() {
        const std::string name = std::is_signed_v<T> ? "int" : "uint";
        return isAlternative<T> || sizeof(T) == 4 ? name : name + std::to_string(8 * sizeof(T));
    }
};

template <typename Rep, typename Period>
struct BuiltInConversion<std::chrono::duration<Rep, Period>> {
    static_assert(std::is_arithmetic_v<Rep>, "durations of options count in numbers");
    using Duration = std::chrono::duration<Rep, Period>;

    static std::optional<Duration> from(const OptionValue& value) {
        if constexpr (std::is_floating_point_v<Rep>)
            return fromRounded(value);
        else
            return fromExact(value);
    }

    static std::string typeName() { return "duration"; }

private:
    static std::optional<Duration> fromExact(const OptionValue& value) {
        using Limits = std::numeric_limits<Rep>;
        std::uint64_t twosComplement = 0;
        if (!toTicks(value, Period::num, Period::den, static_cast<std::int64_t>(Limits::min()),
                     static_cast<std::uint64_t>(Limits::max()), twosComplement))
            return std::nullopt;
        return Duration(static_cast<Rep>(twosComplement));
    }

    static std::optional<Duration> fromRounded(const OptionValue& value) {
        long double ticks = 0;
        if (!toRoundedTicks(value, Period::num, Period::den, std::numeric_limits<Rep>::digits,
                            ticks) ||
            ticks > static_cast<long double>(std::numeric_limits<Rep>::max()) ||
            ticks < static_cast<long double>(std::numeric_limits<Rep>::lowest()))
            return std::nullopt;
        return Duration(static_cast<Rep>(ticks));
    }
};

template <>
struct BuiltInConversion<ByteSize> {
    static std::optional<ByteSize> from(const OptionValue& value) {
        ByteSize size;
        return toBytes(value, size.bytes) ? std::optional<ByteSize>(size) : std::nullopt;
    }
    static std::string typeName() { return "byte size"; }
};

template <>
struct BuiltInConversion<std::filesystem::path> {
    static std::optional<std::filesystem::path> from(const OptionValue& value) {
        std::string text;
        if (!toPathText(value, text))
            return std::nullopt;
        return std::filesystem::u8path(text);
    }
    static std::string typeName() { return "path"; }
};

template <typename T>
struct BuiltInConversion<T, std::enable_if_t<std::is_enum_v<T>>> {
    static_assert(HasNames<T>::value, "specialise OptionNames for this enumeration");

    static std::optional<T> from(const OptionValue& value) {
        const std::optional<std::string> text = textOf(value);
        for (const auto& [name, enumerator] : OptionNames<T>::names) {
            if (text && equalIgnoringCase(*text, name))
                return enumerator;
        }
        return std::nullopt;
    }

    static std::string typeName() {
        std::string names;
        for (const auto& entry : OptionNames<T>::names)
            names.append(names.empty() ? "one of " : ", ").append(entry.first);
        return names;
    }
};

/// The conversion of a type: the application's if there is one.
template <typename T, typename = void>
struct Conversion : BuiltInConversion<T> {};

template <typename T>
struct Conversion<T, std::enable_if_t<HasConverter<T>::value>> {
    static std::optional<T> from(const OptionValue& value) {
        try {
            return OptionConverter<T>::convert(value);
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
    static std::string typeName() { return OptionConverter<T>::typeName(); }
};

/// The tag of a list that is an alternative; nothing for other lists.
template <typename T>
std::string listTag() {
    return isAlternative<std::vector<T>> ? Conversion<T>::typeName() + "Array" : std::string();
}

template <typename T>
struct BuiltInConversion<std::vector<T>> {
    static std::optional<std::vector<T>> from(const OptionValue& value) {
        if constexpr (isAlternative<std::vector<T>>) {
            if (const auto* const same = boost::get<std::vector<T>>(&value))
                return *same;
        }
        const std::optional<std::vector<OptionValue>> items = toItems(value);
        if (!items)
            return std::nullopt;
        std::vector<T> list;
        list.reserve(items->size());
        for (const OptionValue& item : *items) {
            std::optional<T> element = Conversion<T>::from(item);
            if (!element)
                return std::nullopt;
            list.push_back(*std::move(element));
        }
        return list;
    }

    static std::string typeName() {
        const std::string tag = listTag<T>();
        return tag.empty() ? "list of " + Conversion<T>::typeName() : tag;
    }
};

/// @return the place of T among the candidates
template <typename T, typename... Candidates>
constexpr int indexAmong(boost::variant<Candidates...>*) {
    int index = 0;
    static_cast<void>(((std::is_same_v<T, Candidates> || (++index, false)) || ...));
    return index;
}

/// Converts a value that is not needed afterwards: one that has the type already is moved.
template <typename T>
std::optional<T> convertOrMove(OptionValue& value) {
    if constexpr (isAlternative<T> && !HasConverter<T>::value) {
        constexpr int index = indexAmong<T>(static_cast<OptionValue*>(nullptr));
        if (value.which() == index) // faster than getting a null pointer
            return std::move(boost::get<T>(value));
    }
    return Conversion<T>::from(value);
}

} // namespace connector::configuration::detail
