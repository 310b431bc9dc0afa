/// The arguments of check.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace connector_config {

struct CheckArguments {
    enum class Output : std::uint8_t { Lines, Json, Sarif };
    enum class Action : std::uint8_t {
        Report, ///< writes the findings
        Fix,    ///< rewrites the files first
        Diff,   ///< writes what Fix would change, and no findings
    };

    std::vector<std::string> files; ///< "-" is standard input
    std::set<std::string> disabledRules;
    std::optional<std::string> schemaFile;
    Output output = Output::Lines;
    Action action = Action::Report;
};

} // namespace connector_config
