#include "documentation/DocumentationCommands.hpp"

#include "documentation/Completion.hpp"
#include "documentation/ManualPage.hpp"
#include "values/WrongArguments.hpp"

#include <CLI/CLI.hpp>

namespace connector_config {

namespace {

void checkNoOptions(const CLI::App& program, const CLI::App& command) {
    for (const CLI::Option* const option :
         program.get_options([](const CLI::Option* one) { return one->count() > 0; }))
        throw WrongArguments(command.get_name() + " excludes " + option->get_name());
}

} // namespace

void DocumentationCommands::declare(CLI::App& app) {
    program = &app;
    CLI::App* const command = app.add_subcommand("completion");
    command->set_help_flag(); // --help after a command is the program's own option
    command->add_option("bash|zsh|fish", shell)->required();
    completion = command;
    CLI::App* const page = app.add_subcommand("manual");
    page->set_help_flag();
    manual = page;
}

std::optional<std::string> DocumentationCommands::output(const std::string& help,
                                                         const std::string& version) const {
    const CLI::App* const chosen = completion->parsed() ? completion : manual;
    if (!chosen->parsed())
        return std::nullopt;
    checkNoOptions(*program, *chosen);
    const HelpDocument document = readHelp(help);
    if (chosen == manual)
        return manualPage(document, version);
    const GrammarCommand grammar = grammarOf(*program);
    if (shell == "bash")
        return bashCompletion(grammar);
    if (shell == "zsh")
        return zshCompletion(grammar, document);
    if (shell == "fish")
        return fishCompletion(grammar, document);
    throw WrongArguments("Unknown shell: " + shell);
}

} // namespace connector_config
