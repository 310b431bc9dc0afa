/// All entries of a source.
#pragma once

#include <connector/configuration/registry/ConfigurationSourceMap.hpp>

#include <map>
#include <string>

namespace connector::configuration::detail {

/// REQUIRES: the configuration's mutex is held
/// @param lookup  the scope of the queries to the source
/// @return the values by the keys of the source
/// @throws what the source throws
std::map<std::string, OptionValue> tableOf(ConfigurationSourceMap& record, LookupScope& lookup);

} // namespace connector::configuration::detail
