#include <connector/configuration/typed/detail/Decimal.hpp>

#include <limits>

namespace connector::configuration::detail {

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool append(Wide& digits, char digit) {
    return !__builtin_mul_overflow(digits, Wide{10}, &digits) &&
           !__builtin_add_overflow(digits, static_cast<Wide>(digit - '0'), &digits);
}

Wide greatestCommonDivisor(Wide left, Wide right) {
    while (right != 0) {
        const Wide rest = left % right;
        left = right;
        right = rest;
    }
    return left;
}

/// Divides one of the two by a prime. @return false when the prime divides neither
bool divideOne(Wide& left, Wide& right, unsigned prime) {
    Wide& divided = left % prime == 0 ? left : right;
    if (divided % prime != 0)
        return false;
    divided /= prime;
    return true;
}

} // namespace

std::size_t leadingDigits(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && isDigit(text[length]))
        ++length;
    return length;
}

std::size_t leadingNumber(std::string_view text) {
    const std::size_t whole = leadingDigits(text);
    if (whole == 0 || whole == text.size() || text[whole] != '.')
        return whole;
    const std::size_t fraction = leadingDigits(text.substr(whole + 1));
    return fraction == 0 ? whole : whole + 1 + fraction;
}

std::optional<Decimal> readDecimal(std::string_view text) {
    if (text.empty() || leadingNumber(text) != text.size())
        return std::nullopt;
    const std::size_t point = text.find('.');
    if (point != std::string_view::npos) {
        while (text.back() == '0')
            text.remove_suffix(1);
    }
    Decimal value;
    for (const char character : text) {
        if (character != '.' && !append(value.digits, character))
            return std::nullopt;
    }
    if (point != std::string_view::npos)
        value.scale = text.size() - point - 1;
    return value;
}

std::optional<std::uint64_t> wholeQuotient(Decimal value, Wide factor, Wide divisor) {
    if (value.digits == 0)
        return 0;
    // The result is whole only if every prime factor of the denominator is found in the numerator.
    for (std::size_t tens = 0; tens < value.scale; ++tens) {
        if (!divideOne(value.digits, factor, 2) || !divideOne(value.digits, factor, 5))
            return std::nullopt;
    }
    const Wide common = greatestCommonDivisor(value.digits, divisor);
    value.digits /= common;
    divisor /= common;
    if (factor % divisor != 0)
        return std::nullopt;
    Wide quotient = 0;
    if (__builtin_mul_overflow(value.digits, factor / divisor, &quotient) ||
        quotient > std::numeric_limits<std::uint64_t>::max())
        return std::nullopt;
    return static_cast<std::uint64_t>(quotient);
}

} // namespace connector::configuration::detail
