/// Files with snapshots.
#pragma once

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/SourceSnapshot.hpp>

#include <string>
#include <vector>

namespace connector_config {

using Snapshot = std::vector<connector::configuration::SourceSnapshot>;

/// @param text  of any file
/// @return whether the text is meant as a snapshot: a JSON object with "format" and "sources"
bool isSnapshot(const std::string& text);

/// @param name  for failures
/// @throws std::runtime_error NAME + ": Not a valid snapshot: ..."
Snapshot parseSnapshot(const std::string& name, const std::string& text);

/// @param name  a path, or "-" for standard input
/// @throws std::system_error "File could not be read: NAME: REASON"
/// @throws std::runtime_error as parseSnapshot
Snapshot readSnapshotFile(const std::string& name);

/// Removes all sources of a configuration and adds those of a snapshot, as tables in memory.
void replaceSources(connector::configuration::ConfigurationImpl& configuration,
                    const Snapshot& snapshot);

/// @return whether the value that a source has for a key is masked in the snapshot
/// @param key  with the group
bool isMasked(const Snapshot& snapshot, const std::string& source, const std::string& key);

} // namespace connector_config
