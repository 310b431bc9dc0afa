/// Makes the options of connector::etcd of the argument of --etcd.
#pragma once

#include "arguments/EtcdArgument.hpp"

#include <connector/etcd/Options.hpp>

namespace connector_config {

connector::etcd::Options etcdOptionsOf(const EtcdArgument& argument);

} // namespace connector_config
