#include "arguments/WatchLine.hpp"

#include "values/WrongArguments.hpp"

namespace connector_config {

namespace {

constexpr const char* whitespace = " \t";

std::string withoutLeadingWhitespace(const std::string& text) {
    const std::size_t start = text.find_first_not_of(whitespace);
    return start == std::string::npos ? "" : text.substr(start);
}

SetLine parseSet(const std::string& text, const Secrets& secrets) {
    const std::string trimmed = text.substr(0, text.find_last_not_of(whitespace) + 1);
    const std::size_t separator = trimmed.find_last_of(whitespace);
    if (separator == std::string::npos || trimmed[separator + 1] != '@')
        return {parseAssignment(text, secrets), std::nullopt};
    return {parseAssignment(trimmed.substr(0, separator), secrets), trimmed.substr(separator + 2)};
}

} // namespace

WatchLine parseWatchLine(const std::string& line, const Secrets& secrets) {
    const std::string words = withoutLeadingWhitespace(line);
    const std::size_t end = std::min(words.find_first_of(whitespace), words.size());
    const std::string command = words.substr(0, end);
    const std::string argument = withoutLeadingWhitespace(words.substr(end));

    if (command == "set" && !argument.empty())
        return parseSet(argument, secrets);
    if (command == "add" && !argument.empty())
        return AddLine{parseFileArgument(argument)};
    if (command == "remove" && !argument.empty())
        return RemoveLine{argument};
    if (command == "quit" && argument.empty())
        return QuitLine{};
    throw WrongArguments(
        "Neither set KEY[:TYPE]=VALUE [@SOURCE], add FILE, remove NAME nor quit: " + line);
}

} // namespace connector_config
