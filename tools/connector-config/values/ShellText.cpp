#include "values/ShellText.hpp"

namespace connector_config {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// @return the character of a variable's name, whatever the locale is
char variableCharacter(char c) {
    if (c >= 'a' && c <= 'z')
        return static_cast<char>(c - 'a' + 'A');
    return (c >= 'A' && c <= 'Z') || isDigit(c) ? c : '_';
}

} // namespace

std::string shellVariable(const std::string& key) {
    std::string name;
    if (!key.empty() && isDigit(key.front()))
        name += '_';
    for (const char c : key)
        name += variableCharacter(c);
    return name;
}

std::string shellQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'')
            quoted += R"('\'')"; // only a quote ends the quotation; nothing else is special in it
        else
            quoted += c;
    }
    return quoted + '\'';
}

} // namespace connector_config
