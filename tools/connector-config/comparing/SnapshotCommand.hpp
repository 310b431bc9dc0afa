/// snapshot
#pragma once

#include "arguments/Arguments.hpp"
#include "comparing/SnapshotFile.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <string>

namespace connector_config {

/// @param previous  whose sources the configuration has; empty if it has others. What is masked in
///                  it stays masked.
/// @return the document of all sources. Secrets are masked unless the arguments say otherwise.
std::string snapshotOf(connector::configuration::ConfigurationImpl& configuration,
                       const Arguments& arguments, const Snapshot& previous);

} // namespace connector_config
