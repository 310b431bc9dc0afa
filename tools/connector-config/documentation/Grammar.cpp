#include "documentation/Grammar.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

namespace connector_config {

namespace {

bool isLowerCase(const std::string& text) {
    return !text.empty() &&
           text.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == std::string::npos;
}

/// @return the words of "one|two", or nothing if the text is not of this form
std::vector<std::string> choicesIn(const std::string& name) {
    std::vector<std::string> choices;
    std::istringstream rest(name);
    for (std::string choice; std::getline(rest, choice, '|');) {
        if (!isLowerCase(choice))
            return {};
        choices.push_back(choice);
    }
    return choices.size() > 1 ? choices : std::vector<std::string>{};
}

ValueKind kindOf(const std::string& name) {
    if (!choicesIn(name).empty())
        return ValueKind::Choice;
    // "A" and "B" may be files or something else.
    if (name.find("FILE") != std::string::npos || name.size() == 1)
        return ValueKind::File;
    return name.find("DIR") != std::string::npos ? ValueKind::Directory : ValueKind::Other;
}

GrammarValue valueOf(const CLI::Option& option, const std::string& name) {
    GrammarValue value;
    value.isRepeatable = option.get_items_expected_max() > 1;
    if (option.get_items_expected_max() == 0) // a flag
        return value;
    value.name = name;
    value.kind = kindOf(name);
    value.choices = choicesIn(name);
    return value;
}

GrammarOption namedOption(const CLI::Option& option) {
    GrammarOption named;
    for (const std::string& name : option.get_snames())
        named.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        named.names.push_back("--" + name);
    named.value = valueOf(option, option.get_type_name());
    return named;
}

GrammarCommand commandOf(const CLI::App& app, const std::string& path) {
    GrammarCommand command;
    command.path = path;
    for (const CLI::Option* const option :
         app.get_options([](const CLI::Option*) { return true; })) {
        if (option->get_positional())
            command.arguments.push_back(valueOf(*option, option->get_name()));
        else
            command.options.push_back(namedOption(*option));
    }
    for (const CLI::App* const below : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (!below->get_name().empty())
            command.commands.push_back(
                commandOf(*below, path + (path.empty() ? "" : " ") + below->get_name()));
    }
    return command;
}

void collect(const GrammarCommand& command, std::vector<const GrammarCommand*>& all) {
    all.push_back(&command);
    for (const GrammarCommand& below : command.commands)
        collect(below, all);
}

} // namespace

GrammarCommand grammarOf(const CLI::App& app) {
    return commandOf(app, "");
}

std::vector<const GrammarCommand*> allCommands(const GrammarCommand& command) {
    std::vector<const GrammarCommand*> all;
    collect(command, all);
    return all;
}

std::string lastWord(const GrammarCommand& command) {
    return command.path.substr(command.path.find_last_of(' ') + 1);
}

} // namespace connector_config
