#include "arguments/CommandLine.hpp"

#include "arguments/LiteralArguments.hpp"
#include "values/Suggestion.hpp"
#include "values/WrongArguments.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace connector_config {

namespace {

std::vector<std::string> optionsOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : command.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

std::vector<std::string> commandsOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* const subcommand : command.get_subcommands(nullptr))
        names.push_back(subcommand->get_name());
    return names;
}

/// Whoever mistypes a word seldom mistypes its first letter. Words are short, so two edits make a
/// word of most others.
/// @return ", did you mean CANDIDATE?" or nothing
std::string likely(const std::string& text, std::vector<std::string> candidates) {
    const std::size_t first = text.find_first_not_of('-');
    const auto differs = [&](const std::string& candidate) {
        return text.compare(0, first + 1, candidate, 0, first + 1) != 0;
    };
    if (first == text.npos)
        return "";
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(), differs),
                     candidates.end());
    return suggestion(text, candidates);
}

/// @return whether the program or one of its commands has the option
bool isOption(const CLI::App& command, const std::string& name) {
    const std::vector<std::string> names = optionsOf(command);
    if (std::find(names.begin(), names.end(), name) != names.end())
        return true;
    const std::vector<const CLI::App*> commands = command.get_subcommands(nullptr);
    return std::any_of(commands.begin(), commands.end(),
                       [&name](const CLI::App* one) { return isOption(*one, name); });
}

} // namespace

CommandLine::CommandLine(CLI::App& newApp) : app(newApp) {
    app.require_subcommand(0, 1);
    app.fallthrough(); // commands that are added later inherit it
}

CLI::App& CommandLine::add(const char* name, Command command) {
    CLI::App* const subcommand = app.add_subcommand(name);
    subcommand->set_help_flag(); // --help after a command is the program's own option
    commands[subcommand] = command;
    return *subcommand;
}

void CommandLine::parse(int argc, const char* const argv[]) {
    try {
        std::vector<std::string> rest = markedBackwards(argc, argv);
        app.parse(rest);
    } catch (const CLI::Success&) {
        throw;
    } catch (const CLI::ExtrasError&) {
        throw WrongArguments(describeExtra(unmarked(app.remaining(true).front())));
    } catch (const CLI::RequiredError& error) {
        // What is missing may be there, but mistyped: name that.
        const std::vector<std::string> extras = app.remaining(true);
        throw WrongArguments(extras.empty() ? error.what()
                                            : describeExtra(unmarked(extras.front())));
    } catch (const CLI::ParseError& error) {
        throw WrongArguments(error.what());
    }
}

Command CommandLine::command() const {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    if (chosen.empty())
        throw WrongArguments("COMMAND is required");
    return commands.at(chosen.front());
}

std::string CommandLine::describeExtra(const std::string& extra) const {
    const CLI::App* innermost = &app;
    std::string path;
    std::vector<std::string> options = optionsOf(app);
    while (!innermost->get_subcommands().empty()) {
        innermost = innermost->get_subcommands().front();
        path += innermost->get_name() + ' ';
        for (std::string& option : optionsOf(*innermost))
            options.push_back(std::move(option));
    }
    if (extra.compare(0, 1, "-") == 0) // an option of another command is not mistyped
        return "Unexpected argument: " + extra +
               (isOption(app, extra) ? "" : likely(extra, std::move(options)));
    const std::vector<std::string> commands = commandsOf(*innermost);
    if (commands.empty())
        return "Unexpected argument: " + extra;
    return "Unknown command: " + path + extra + likely(extra, commands);
}

} // namespace connector_config
