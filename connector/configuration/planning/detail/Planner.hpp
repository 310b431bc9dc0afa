/// Compares the registry with what a change would make of it.
#pragma once

#include <connector/configuration/planning/Change.hpp>
#include <connector/configuration/planning/Plan.hpp>
#include <connector/configuration/registry/ConfigurationSourceMap.hpp>

namespace connector::configuration::detail {

/// Reads the sources and changes nothing.
/// REQUIRES: the configuration's mutex is held
/// @param records  a copy of the registry
/// @throws as propose
planning::Plan planOf(SourceRecords records, planning::Change&& change);

} // namespace connector::configuration::detail
