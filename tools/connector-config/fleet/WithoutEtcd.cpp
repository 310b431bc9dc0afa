/// What stands for this room in a program without connector::etcd. The arguments are refused before
/// any of it is called.
#include "fleet/EtcdSources.hpp"
#include "fleet/Fleet.hpp"
#include "values/WrongArguments.hpp"

namespace connector_config {

void addEtcd(connector::configuration::ConfigurationImpl&, const EtcdArgument&, bool) {
    throw WrongArguments("This program was built without etcd");
}

ExitStatus runFleet(const Arguments&) {
    throw WrongArguments("This program was built without etcd");
}

} // namespace connector_config
