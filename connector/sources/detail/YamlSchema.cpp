#include <connector/sources/detail/YamlSchema.hpp>

#include <connector/sources/detail/Numbers.hpp>

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <utility>

namespace connector::sources::detail {

namespace {

using configuration::OptionValue;
using Words = std::array<std::string_view, 3>;

constexpr std::string_view decimalDigits = "0123456789";

bool isOneOf(std::string_view text, const Words& words) {
    return std::find(words.begin(), words.end(), text) != words.end();
}

/// @return whether the text is not empty and consists only of these characters
bool consistsOf(std::string_view text, std::string_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

bool hasPrefix(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

std::string_view withoutSign(std::string_view text) {
    return text.substr(!text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0);
}

bool isNull(std::string_view text) {
    return text.empty() || text == "~" || isOneOf(text, {"null", "Null", "NULL"});
}

std::optional<bool> boolOf(std::string_view text) {
    if (isOneOf(text, {"true", "True", "TRUE"}))
        return true;
    if (isOneOf(text, {"false", "False", "FALSE"}))
        return false;
    return std::nullopt;
}

bool isDecimalInteger(std::string_view text) {
    return consistsOf(withoutSign(text), decimalDigits);
}

bool isOctalInteger(std::string_view text) {
    return hasPrefix(text, "0o") && consistsOf(text.substr(2), "01234567");
}

bool isHexadecimalInteger(std::string_view text) {
    return hasPrefix(text, "0x") && consistsOf(text.substr(2), "0123456789abcdefABCDEF");
}

/// [-+]? ( \. [0-9]+ | [0-9]+ ( \. [0-9]* )? ) ( [eE] [-+]? [0-9]+ )?
bool isFraction(std::string_view text) {
    text = withoutSign(text);
    const std::size_t mark = text.find_first_of("eE");
    if (mark != std::string_view::npos &&
        !consistsOf(withoutSign(text.substr(mark + 1)), decimalDigits))
        return false;
    const std::string_view mantissa = text.substr(0, mark);
    const std::size_t point = mantissa.find('.');
    if (point == std::string_view::npos)
        return consistsOf(mantissa, decimalDigits);
    const std::string_view before = mantissa.substr(0, point);
    const std::string_view behind = mantissa.substr(point + 1);
    return before.empty() ? consistsOf(behind, decimalDigits)
                          : consistsOf(before, decimalDigits) &&
                                (behind.empty() || consistsOf(behind, decimalDigits));
}

/// @return an integer; nothing if the text is not an integer
std::optional<OptionValue> integerOf(const std::string& text, Place place) {
    std::optional<OptionValue> value;
    if (isDecimalInteger(text))
        value = decimalInteger(text);
    else if (isOctalInteger(text))
        value = binaryInteger(text.substr(2), 3);
    else if (isHexadecimalInteger(text))
        value = binaryInteger(text.substr(2), 4);
    else
        return std::nullopt;
    if (!value)
        throw DocumentError(place, "The integer is not exact as a double");
    return value;
}

/// @return a double; nothing if the text is not a number
std::optional<double> fractionOf(const std::string& text, Place place) {
    if (isOneOf(withoutSign(text), {".inf", ".Inf", ".INF"})) {
        const double infinity = std::numeric_limits<double>::infinity();
        return text[0] == '-' ? -infinity : infinity;
    }
    if (isOneOf(text, {".nan", ".NaN", ".NAN"}))
        return std::numeric_limits<double>::quiet_NaN();
    if (!isFraction(text))
        return std::nullopt;
    const std::optional<double> value = decimalFraction(text);
    if (!value)
        throw DocumentError(place, "The number is beyond the range of double");
    return value;
}

std::optional<OptionValue> plain(const std::string& text, Place place) {
    if (isNull(text))
        return std::nullopt;
    if (const std::optional<bool> value = boolOf(text))
        return OptionValue(*value);
    if (std::optional<OptionValue> value = integerOf(text, place))
        return value;
    if (const std::optional<double> value = fractionOf(text, place))
        return OptionValue(*value);
    return OptionValue(text);
}

[[noreturn]] void refuse(Place place) {
    throw DocumentError(place, "The text does not fit its tag");
}

} // namespace

std::optional<YamlType> yamlTypeOf(const std::string& tag) {
    static constexpr std::pair<std::string_view, YamlType> tags[] = {
        {"", YamlType::Plain},
        {"?", YamlType::Plain},
        {"!", YamlType::Text},
        {"tag:yaml.org,2002:str", YamlType::Text},
        {"tag:yaml.org,2002:null", YamlType::Null},
        {"tag:yaml.org,2002:bool", YamlType::Bool},
        {"tag:yaml.org,2002:int", YamlType::Int},
        {"tag:yaml.org,2002:float", YamlType::Float},
        {"tag:yaml.org,2002:seq", YamlType::Sequence},
        {"tag:yaml.org,2002:map", YamlType::Mapping},
    };
    for (const auto& [name, type] : tags) {
        if (name == tag)
            return type;
    }
    return std::nullopt;
}

std::optional<OptionValue> yamlScalar(const std::string& text, YamlType type, Place place) {
    switch (type) {
    case YamlType::Plain:
        return plain(text, place);
    case YamlType::Text:
        return OptionValue(text);
    case YamlType::Null:
        if (isNull(text))
            return std::nullopt;
        break;
    case YamlType::Bool:
        if (const std::optional<bool> value = boolOf(text))
            return OptionValue(*value);
        break;
    case YamlType::Int:
        if (std::optional<OptionValue> value = integerOf(text, place))
            return value;
        break;
    case YamlType::Float:
        if (const std::optional<double> value = fractionOf(text, place))
            return OptionValue(*value);
        break;
    case YamlType::Sequence:
    case YamlType::Mapping:
        break;
    }
    refuse(place);
}

} // namespace connector::sources::detail
