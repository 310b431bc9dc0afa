#include <connector/configuration/typed/detail/JsonText.hpp>

#include <connector/configuration/typed/detail/Unicode.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace connector::configuration::detail {

namespace {

/// Digits are written plainly while the exponent is at least the one and less than the other, as
/// the serializer of the JSON form does.
constexpr int leastPlainExponent = -15;
constexpr int firstLargeExponent = 15;

void appendEscaped(std::string& json, char character) {
    constexpr const char* digits = "0123456789ABCDEF";
    const auto code = static_cast<unsigned char>(character);
    switch (character) {
    case '"':
        json += "\\\"";
        return;
    case '\\':
        json += "\\\\";
        return;
    case '\b':
        json += "\\b";
        return;
    case '\f':
        json += "\\f";
        return;
    case '\n':
        json += "\\n";
        return;
    case '\r':
        json += "\\r";
        return;
    case '\t':
        json += "\\t";
        return;
    }
    if (code < 0x20)
        json.append("\\u00").append({digits[code >> 4], digits[code & 15]});
    else
        json += character;
}

/// @param digits    the shortest ones that mean the number, without a point
/// @param exponent  of the first digit
std::string writeDigits(const std::string& digits, int exponent) {
    const auto length = static_cast<int>(digits.size());
    if (exponent < leastPlainExponent || exponent >= firstLargeExponent) {
        const std::string fraction = length > 1 ? '.' + digits.substr(1) : std::string();
        return digits[0] + fraction + (exponent < 0 ? "e-" : "e+") +
               std::to_string(std::abs(exponent));
    }
    if (exponent < 0)
        return "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
    if (length <= exponent + 1)
        return digits + std::string(static_cast<std::size_t>(exponent + 1 - length), '0');
    const auto point = static_cast<std::size_t>(exponent + 1);
    return digits.substr(0, point) + '.' + digits.substr(point);
}

/// Writes any alternative of a value.
class Writer : public boost::static_visitor<std::string> {
public:
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(int value) const { return std::to_string(value); }
    std::string operator()(unsigned int value) const { return std::to_string(value); }
    std::string operator()(double value) const { return jsonNumber(value); }
    std::string operator()(const std::string& text) const { return jsonString(text); }
    std::string operator()(const std::u16string& text) const { return jsonString(anyUtf8(text)); }

    template <typename T>
    std::string operator()(const std::vector<T>& items) const {
        std::string json = "[";
        for (const auto& item : items)
            json.append(json.size() == 1 ? "" : ",").append((*this)(static_cast<const T&>(item)));
        return json + ']';
    }
};

} // namespace

std::string jsonNumber(double number) {
    if (std::isnan(number))
        return "nan";
    if (std::isinf(number))
        return number < 0 ? "-inf" : "inf";
    if (number == 0)
        return "0"; // no minus sign, as in the JSON form
    std::array<char, 32> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                            std::abs(number), std::chars_format::scientific);
    const std::string scientific(buffer.data(), error == std::errc{} ? end : buffer.data());
    const std::size_t mark = scientific.find('e');
    std::string digits = scientific.substr(0, mark);
    if (digits.size() > 1)
        digits.erase(1, 1); // the point
    return (number < 0 ? "-" : "") + writeDigits(digits, std::atoi(scientific.c_str() + mark + 1));
}

std::string jsonString(std::string_view text) {
    std::string json = "\"";
    for (const char character : wellFormedUtf8(text))
        appendEscaped(json, character);
    return json + '"';
}

std::string jsonPayload(const OptionValue& value) {
    return boost::apply_visitor(Writer(), value);
}

} // namespace connector::configuration::detail
