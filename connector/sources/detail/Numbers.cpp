#include <connector/sources/detail/Numbers.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>

namespace connector::sources::detail {

namespace {

using configuration::OptionValue;

/// @return the digits of an integer's magnitude; empty for zero
std::string_view magnitude(std::string_view text) {
    const std::size_t first = text.find_first_not_of("+-0");
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::optional<OptionValue> smallest(std::int64_t number) {
    if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
        return OptionValue(static_cast<int>(number));
    if (number >= 0 && number <= std::numeric_limits<unsigned>::max())
        return OptionValue(static_cast<unsigned>(number));
    const double nearest = static_cast<double>(number);
    // The greatest numbers round to 2^63, which is out of range.
    if (nearest >= 9223372036854775808.0 || static_cast<std::int64_t>(nearest) != number)
        return std::nullopt;
    return OptionValue(nearest);
}

/// @return all digits of a whole number; none has more than 309
std::string digitsOf(double whole) {
    char digits[512];
    const auto end = std::to_chars(digits, digits + sizeof digits, whole, std::chars_format::fixed);
    return std::string(digits, end.ptr);
}

/// Classifies a number that from_chars reports as out of range: too close to zero, or too large.
/// @param text  not zero
/// @return whether it is less than 1
bool isTiny(const std::string& text) {
    const std::size_t mark = text.find_first_of("eE");
    const std::string mantissa = text.substr(0, mark);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_of("123456789");
    // The number of digits from the first one to the point; not positive: it is after the point.
    const auto places = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    if (mark == std::string::npos)
        return places <= 0;
    const bool isNegative = text[mark + 1] == '-';
    const char* const digits = text.data() + mark + (isNegative || text[mark + 1] == '+' ? 2 : 1);
    std::int64_t exponent = std::numeric_limits<std::int64_t>::max() / 2; // when it does not fit
    std::from_chars(digits, text.data() + text.size(), exponent);
    return places + (isNegative ? -exponent : exponent) <= 0;
}

} // namespace

std::optional<OptionValue> decimalInteger(const std::string& text) {
    const char* const begin = text.data() + (text.front() == '+' ? 1 : 0);
    const char* const end = text.data() + text.size();
    std::int64_t number = 0;
    if (std::from_chars(begin, end, number).ec == std::errc())
        return smallest(number);
    const std::optional<double> nearest = decimalFraction(text);
    if (!nearest || digitsOf(std::fabs(*nearest)) != magnitude(text))
        return std::nullopt;
    return OptionValue(*nearest);
}

std::optional<OptionValue> binaryInteger(const std::string& digits, unsigned bitsPerDigit) {
    std::string bits; // 0 and 1, the highest first
    for (const char digit : digits) {
        const unsigned value =
            static_cast<unsigned>(digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10);
        for (unsigned bit = bitsPerDigit; bit-- > 0;)
            bits += (value >> bit & 1) != 0 ? '1' : '0';
    }
    const std::size_t first = bits.find('1');
    if (first == std::string::npos)
        return OptionValue(0);
    const std::size_t zeros = bits.size() - 1 - bits.rfind('1');
    const std::size_t significant = bits.size() - zeros - first;
    if (significant > 53 || bits.size() - first > 1024)
        return std::nullopt;
    std::uint64_t mantissa = 0;
    std::from_chars(bits.data() + first, bits.data() + first + significant, mantissa, 2);
    const double exact = std::ldexp(static_cast<double>(mantissa), static_cast<int>(zeros));
    if (exact > std::numeric_limits<unsigned>::max())
        return OptionValue(exact);
    return smallest(static_cast<std::int64_t>(exact));
}

std::optional<double> decimalFraction(const std::string& text) {
    const char* const begin = text.data() + (text.front() == '+' ? 1 : 0);
    double number = 0;
    if (std::from_chars(begin, text.data() + text.size(), number).ec == std::errc())
        return number;
    if (!isTiny(text))
        return std::nullopt;
    return text.front() == '-' ? -0.0 : 0.0;
}

} // namespace connector::sources::detail
