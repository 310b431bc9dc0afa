/// What stands for this room in connector-config-network. connector-config starts another program
/// for what calls it.
#include "fleet/EtcdSources.hpp"
#include "fleet/Fleet.hpp"
#include "values/WrongArguments.hpp"

namespace connector_config {

void addEtcd(connector::configuration::ConfigurationImpl&, const EtcdArgument&, bool) {
    throw WrongArguments("connector-config-network has no etcd");
}

ExitStatus runFleet(const Arguments&) {
    throw WrongArguments("connector-config-network has no etcd");
}

} // namespace connector_config
