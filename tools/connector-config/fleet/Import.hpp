/// fleet import
#pragma once

#include "arguments/FleetArguments.hpp"

#include <connector/etcd/EtcdClient.hpp>

namespace connector_config {

/// Makes the prefix say what the file says. Writes a line for each key that changes to standard
/// output first.
/// @throws std::runtime_error  the file cannot be read, the engine does not answer, or a
///         transaction failed; the message then says how many changes were done
/// @throws OutputError
void importFile(connector::etcd::EtcdClient& client, const FleetArguments& arguments);

} // namespace connector_config
