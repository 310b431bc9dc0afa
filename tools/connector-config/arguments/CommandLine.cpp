#include "arguments/CommandLine.hpp"

#include "arguments/LiteralArguments.hpp"
#include "values/WrongArguments.hpp"

#include <CLI/CLI.hpp>

namespace connector_config {

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
    while (!innermost->get_subcommands().empty()) {
        innermost = innermost->get_subcommands().front();
        path += innermost->get_name() + ' ';
    }
    const bool takesCommand = !innermost->get_subcommands(nullptr).empty();
    if (takesCommand && extra.compare(0, 1, "-") != 0)
        return "Unknown command: " + path + extra;
    return "Unexpected argument: " + extra;
}

} // namespace connector_config
