#include <connector/service/messages/OptionBody.hpp>

#include <connector/service/messages/OptionBodyHandler.hpp>
#include <connector/service/messages/TooManyElements.hpp>
#include <connector/service/text/Number.hpp>
#include <connector/service/text/Utf8.hpp>

#include <boost/locale/encoding_utf.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace connector::service {

using configuration::OptionValue;
using Scalar = OptionPayload::Scalar;

namespace {

/// Each specialisation returns nothing if the scalar is not of type T.
template <typename T>
std::optional<T> as(const Scalar& scalar);

template <typename Integer>
std::optional<Integer> asInteger(const Scalar& scalar) {
    const auto* const number = std::get_if<JsonNumber>(&scalar);
    // Not as an unsigned type, for which "-0" is no number.
    const auto value = number == nullptr ? std::nullopt : readNumber<std::int64_t>(number->text);
    if (!value || *value < std::numeric_limits<Integer>::min() ||
        *value > std::numeric_limits<Integer>::max())
        return std::nullopt;
    return static_cast<Integer>(*value);
}

/// @param integer  the text of which `value` is the nearest double
bool isExact(std::string_view integer, double value) {
    constexpr std::size_t longest = std::numeric_limits<double>::max_exponent10 + 3;
    char text[longest + 1];
    const int length = std::snprintf(text, sizeof text, "%.0f", value);
    return integer == std::string_view(text, static_cast<std::size_t>(length));
}

template <>
std::optional<bool> as<bool>(const Scalar& scalar) {
    const auto* const flag = std::get_if<bool>(&scalar);
    return flag == nullptr ? std::nullopt : std::optional(*flag);
}

template <>
std::optional<int> as<int>(const Scalar& scalar) {
    return asInteger<int>(scalar);
}

template <>
std::optional<unsigned int> as<unsigned int>(const Scalar& scalar) {
    return asInteger<unsigned int>(scalar);
}

template <>
std::optional<double> as<double>(const Scalar& scalar) {
    const auto* const number = std::get_if<JsonNumber>(&scalar);
    const auto value = number == nullptr ? std::nullopt : readNumber<double>(number->text);
    if (value && number->isInteger() && !isExact(number->text, *value))
        return std::nullopt;
    return value;
}

template <>
std::optional<std::string> as<std::string>(const Scalar& scalar) {
    const auto* const text = std::get_if<std::string>(&scalar);
    return text == nullptr ? std::nullopt : std::optional(*text);
}

template <>
std::optional<std::u16string> as<std::u16string>(const Scalar& scalar) {
    const auto* const text = std::get_if<std::string>(&scalar);
    if (text == nullptr)
        return std::nullopt;
    return boost::locale::conv::utf_to_utf<char16_t>(*text); // the body is valid UTF-8
}

template <typename T>
std::optional<OptionValue> asValue(const OptionPayload& payload) {
    if (payload.isArray)
        return std::nullopt;
    const auto value = as<T>(payload.scalars.front());
    return value ? std::optional<OptionValue>(*value) : std::nullopt;
}

template <typename T>
std::optional<OptionValue> asArray(const OptionPayload& payload) {
    if (!payload.isArray)
        return std::nullopt;
    std::vector<T> elements;
    elements.reserve(payload.scalars.size());
    for (const Scalar& scalar : payload.scalars) {
        auto element = as<T>(scalar);
        if (!element)
            return std::nullopt;
        elements.push_back(*std::move(element));
    }
    return OptionValue(std::move(elements));
}

struct Type {
    const char* tag;
    /// Returns nothing if the payload is not of the type.
    std::optional<OptionValue> (*read)(const OptionPayload&);
};

/// The tags of the JSON form. A bare value gets the first type of the first ten that it has.
constexpr Type types[] = {
    {"bool", asValue<bool>},
    {"int", asValue<int>},
    {"uint", asValue<unsigned int>},
    {"double", asValue<double>},
    {"string", asValue<std::string>},
    {"boolArray", asArray<bool>},
    {"intArray", asArray<int>},
    {"uintArray", asArray<unsigned int>},
    {"doubleArray", asArray<double>},
    {"stringArray", asArray<std::string>},
    {"ustring", asValue<std::u16string>},
    {"ustringArray", asArray<std::u16string>},
};

OptionValue typedValue(const std::string& tag, const OptionPayload& payload) {
    for (const Type& type : types) {
        if (tag != type.tag)
            continue;
        if (auto value = type.read(payload))
            return *std::move(value);
        throw UnacceptableValue("Value is not of type " + tag);
    }
    throw UnacceptableValue("Unknown type");
}

OptionValue bareValue(const OptionPayload& payload) {
    if (payload.isArray && payload.scalars.empty())
        return std::vector<std::string>();
    for (const Type& type : types) {
        if (auto value = type.read(payload))
            return *std::move(value);
    }
    const bool isNumeric =
        std::all_of(payload.scalars.begin(), payload.scalars.end(), [](const Scalar& scalar) {
            return std::holds_alternative<JsonNumber>(scalar);
        });
    throw UnacceptableValue(isNumeric ? "A number does not fit exactly into a type"
                                      : "The elements of an array must be of one kind");
}

} // namespace

OptionValue readOptionBody(std::string_view body) {
    if (!isUtf8(body))
        throw NotJson("Text is not valid UTF-8");
    OptionBodyHandler handler;
    try {
        readJson(body, handler);
    } catch (const TooManyElements&) {
        throw;
    } catch (const std::invalid_argument& error) {
        throw NotJson(error.what());
    }
    const OptionPayload& payload = handler.payload();
    return handler.type() ? typedValue(*handler.type(), payload) : bareValue(payload);
}

} // namespace connector::service
