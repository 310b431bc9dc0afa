/// plan
#pragma once

#include "arguments/Arguments.hpp"
#include "commands/NamedFile.hpp"
#include "comparing/SnapshotFile.hpp"
#include "display/Terminal.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <string>
#include <vector>

namespace connector_config {

struct PlanResult {
    std::string output;                ///< for standard output
    std::vector<std::string> failures; ///< of files that could not be read anew
};

/// Tells what the change of the arguments would do to the configuration, and does not do it.
/// @param files     of the sources
/// @param snapshot  whose sources the configuration has; empty if it has others. Then the files of
///                  the arguments are those that are reloaded, each into the source of its name.
/// @throws what the library throws, for example if set would be refused; as openFile
PlanResult plan(connector::configuration::ConfigurationImpl& configuration,
                const Arguments& arguments, const NamedFiles& files, const Snapshot& snapshot,
                const Terminal& terminal);

} // namespace connector_config
