/// Reads files anew without touching their sources.
#pragma once

#include "commands/NamedFile.hpp"
#include "comparing/SnapshotFile.hpp"

#include <connector/configuration/planning/Change.hpp>

#include <string>
#include <vector>

namespace connector_config {

struct RereadFiles {
    connector::configuration::planning::ReplaceTables tables;
    std::vector<std::string> failures; ///< those that a reload would report; one for each file
};

/// Reads what a reload would read. Skips pipes and devices, which are never reloaded.
/// @param files  of the sources
RereadFiles reread(const NamedFiles& files);

/// Reads the files of a snapshot's sources, each for the source of its name.
/// @throws std::runtime_error "No source with that name: " + name
RereadFiles reread(const std::vector<FileArgument>& files, const Snapshot& snapshot);

} // namespace connector_config
