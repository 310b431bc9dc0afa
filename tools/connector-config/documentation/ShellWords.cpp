#include "documentation/ShellWords.hpp"

namespace connector_config {

std::string singleQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string joined(const std::vector<std::string>& texts, const std::string& separator) {
    std::string result;
    for (const std::string& text : texts)
        result += (result.empty() ? "" : separator) + text;
    return result;
}

} // namespace connector_config
