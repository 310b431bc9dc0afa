/// The commands that describe the program itself.
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace connector_config {

/// completion SHELL, and manual. They take no options, and their output is made of the grammar and
/// of the help text, so that it cannot differ from these.
class DocumentationCommands {
public:
    void declare(CLI::App& app);

    /// Called after parsing.
    /// @return the output of the chosen command; nothing if another command was chosen
    /// @throws WrongArguments "Unknown shell: NAME" or "COMMAND excludes OPTION"
    std::optional<std::string> output(const std::string& help, const std::string& version) const;

private:
    const CLI::App* program = nullptr;
    const CLI::App* completion = nullptr;
    const CLI::App* manual = nullptr;
    std::string shell;
};

} // namespace connector_config
