#include <connector/configuration/typed/detail/PropertyText.hpp>

#include <string_view>

namespace connector::configuration::detail {

namespace {

/// Control characters as escapes: in a value a backslash before a line break continues the line.
void appendEscaped(std::string& text, char character) {
    constexpr const char* digits = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(character);
    if (character == '\\')
        text += "\\\\";
    else if (code < 0x20 && character != '\t')
        text.append("\\u00").append({digits[code >> 4], digits[code & 15]});
    else
        text += character;
}

std::string escaped(const std::string& raw, std::string_view special, std::size_t specialLength) {
    std::string text;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (i < specialLength && special.find(raw[i]) != std::string_view::npos)
            text += '\\';
        appendEscaped(text, raw[i]);
    }
    return text;
}

} // namespace

std::string propertyKey(const std::string& key) {
    const std::string text = escaped(key, "=: \t", key.size());
    const bool looksLikeComment = !text.empty() && (text.front() == '#' || text.front() == '!');
    return looksLikeComment ? '\\' + text : text;
}

std::string propertyValue(const std::string& value) {
    return escaped(value, "=: \t", 1); // after the separator they would be part of it
}

std::string propertyComment(const std::string& text) {
    std::string lines = "# ";
    for (const char character : text) {
        if (character == '\n' || character == '\r')
            lines += "\n# ";
        else
            lines += character;
    }
    return lines + '\n';
}

} // namespace connector::configuration::detail
