/// The characters that have a meaning in property files.
#pragma once

#include <cstddef>
#include <string_view>

namespace connector::configuration::properties::detail {

/// U+FEFF in UTF-8.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

constexpr bool isLineBreak(char c) {
    return c == '\r' || c == '\n';
}
constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
/// java.util.Properties also skips form feeds.
constexpr bool isWhiteSpace(char c) {
    return isBlank(c) || c == '\f';
}
constexpr bool isAssignment(char c) {
    return c == ':' || c == '=';
}
constexpr bool isCommentSign(char c) {
    return c == '#' || c == '!';
}

/// @return the control character that java.util.Properties reads for a backslash with this letter,
///         or NUL if it reads the character itself
constexpr char controlCharacter(char letter) {
    switch (letter) {
    case 't':
        return '\t';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 'f':
        return '\f';
    default:
        return '\0';
    }
}

/// @return the value of a hexadecimal digit, or -1
constexpr int digitValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

/// @return how many hexadecimal digits the text begins with, at most four
constexpr std::size_t leadingDigits(std::string_view text) {
    std::size_t count = 0;
    while (count < 4 && count < text.size() && digitValue(text[count]) >= 0)
        ++count;
    return count;
}

/// @param digits  hexadecimal digits only
constexpr unsigned numberOf(std::string_view digits) {
    unsigned number = 0;
    for (const char digit : digits)
        number = number * 16 + static_cast<unsigned>(digitValue(digit));
    return number;
}

constexpr bool isHighSurrogate(unsigned unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(unsigned unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
constexpr bool isSurrogate(unsigned unit) {
    return isHighSurrogate(unit) || isLowSurrogate(unit);
}

} // namespace connector::configuration::properties::detail
