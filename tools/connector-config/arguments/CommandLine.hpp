/// How CLI11 parses a command line.
#pragma once

#include "arguments/Command.hpp"

#include <map>
#include <string>

namespace CLI {
class App;
}

namespace connector_config {

/// One command with options before and after it.
class CommandLine {
public:
    /// @param newApp  the program, which must outlive this object
    explicit CommandLine(CLI::App& newApp);

    /// @return the grammar of the command, for its options and arguments
    CLI::App& add(const char* name, Command command);

    /// @throws CLI::Success, or a class derived from it, for --help and --version
    /// @throws WrongArguments
    void parse(int argc, const char* const argv[]);

    /// Called after parsing.
    /// @throws WrongArguments "COMMAND is required"
    Command command() const;

private:
    std::string describeExtra(const std::string& extra) const;

    CLI::App& app;
    std::map<const CLI::App*, Command> commands;
};

} // namespace connector_config
