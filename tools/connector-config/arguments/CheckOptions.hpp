/// The grammar of check.
#pragma once

#include "arguments/CheckArguments.hpp"

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace connector_config {

/// Declares the options of check to CLI11, which fills this object.
class CheckOptions {
public:
    /// @param command  the command check, which must outlive this object
    void declare(CLI::App& command);

    /// @param json  whether --json was given
    /// @throws WrongArguments  for options that exclude each other and rules that do not exist
    CheckArguments collect(bool json) const;

private:
    std::vector<std::string> files;
    std::vector<std::string> disabledRules;
    std::string schemaFile;
    bool isSarif = false;
    bool isFix = false;
    bool isDiff = false;
    CLI::Option* schema = nullptr;
};

} // namespace connector_config
