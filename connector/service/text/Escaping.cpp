#include <connector/service/text/Escaping.hpp>

#include <connector/service/text/Utf8.hpp>

#include <cstdio>

namespace connector::service {

namespace {

std::string formatted(const char* format, unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::string byteEscape(char byte) {
    return formatted("\\x%02x", static_cast<unsigned char>(byte));
}

std::string codePointEscape(char32_t codePoint) {
    return formatted("\\u%04x", static_cast<unsigned>(codePoint));
}

std::string controlEscape(const Character& character) {
    switch (character.codePoint) {
    case U'\n':
        return "\\n";
    case U'\r':
        return "\\r";
    case U'\t':
        return "\\t";
    default:
        return character.bytes.size() == 1 ? byteEscape(character.bytes.front())
                                           : codePointEscape(character.codePoint);
    }
}

} // namespace

std::string escaped(std::string_view text) {
    std::string result;
    forEachCharacter(text, [&result](const Character& character) {
        if (!character.valid)
            result += byteEscape(character.bytes.front());
        else if (isControl(character.codePoint))
            result += controlEscape(character);
        else
            result += character.bytes;
    });
    return result;
}

std::string shortened(std::string_view text, std::size_t maxLength) {
    if (text.size() <= maxLength)
        return std::string(text);
    std::size_t length = 0;
    for (std::size_t next = 0; next <= maxLength;) {
        length = next;
        next += firstCharacter(text.substr(next)).bytes.size();
    }
    return std::string(text.substr(0, length)) + "...";
}

std::string toValidUtf8(std::string_view text) {
    std::string result;
    forEachCharacter(text, [&result](const Character& character) {
        result += character.valid ? character.bytes : "\xEF\xBF\xBD";
    });
    return result;
}

std::string escapedJson(std::string_view document) {
    std::string result;
    forEachCharacter(document, [&result](const Character& character) {
        if (character.valid && isControl(character.codePoint))
            result += codePointEscape(character.codePoint);
        else
            result += character.bytes;
    });
    return result;
}

} // namespace connector::service
