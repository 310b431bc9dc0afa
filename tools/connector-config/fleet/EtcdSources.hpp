/// Adds the sources of --etcd.
#pragma once

#include "arguments/EtcdArgument.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

namespace connector_config {

/// Adds a prefix of etcd as a read-only source, which follows the engine as long as the
/// configuration has it. Says on standard error if it was to begin with a cache file and could not.
/// @param tellsStates  whether the source also says on standard error when its state changes
/// @throws std::runtime_error "etcd does not answer: ENDPOINT: CAUSE", and what the library throws
/// @throws WrongArguments for what the library does not take
void addEtcd(connector::configuration::ConfigurationImpl& configuration,
             const EtcdArgument& argument, bool tellsStates);

} // namespace connector_config
