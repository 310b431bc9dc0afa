#include "arguments/LiteralArguments.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace connector_config {

namespace {

// CLI11 treats some arguments specially: "[a,b]" is a list if the option may be repeated,
// "++" ends a command, and "--" ends the options only while the command expects an argument. Keys
// may look like any of these. So every argument that must be taken literally gets a mark in front
// of it, which is removed after parsing.
constexpr char textMark = '\x01';

bool needsMark(const std::string& argument) {
    const char first = argument.empty() ? ' ' : argument.front();
    return first == '[' || first == '+' || first == textMark;
}

} // namespace

std::vector<std::string> markedBackwards(int argc, const char* const argv[]) {
    std::vector<std::string> marked;
    bool onlyLiterals = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--" && !onlyLiterals)
            onlyLiterals = true;
        else
            marked.push_back(onlyLiterals || needsMark(argument) ? textMark + argument : argument);
    }
    std::reverse(marked.begin(), marked.end());
    return marked;
}

std::string unmarked(const std::string& argument) {
    return !argument.empty() && argument.front() == textMark ? argument.substr(1) : argument;
}

void unmarkAll(std::vector<std::string>& arguments) {
    for (std::string& argument : arguments)
        argument = unmarked(argument);
}

std::optional<std::string> textOf(const CLI::Option& option) {
    if (option.count() == 0)
        return std::nullopt;
    return unmarked(option.results().front());
}

} // namespace connector_config
