/// The parts of a program in docs/etcd.md.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/etcd/EtcdSource.hpp>

#include <memory>

namespace test {

std::int64_t
followEtcd(const std::shared_ptr<connector::configuration::ConfigurationImpl>& configuration) {
    connector::etcd::Options options;
    options.endpoints = {"https://10.0.0.1:2379", "https://10.0.0.2:2379"};
    options.prefix = "fleet/web/";
    options.user = "web";
    options.passwordFile = "/etc/web/etcd-password";
    options.tls.authorities = "/etc/web/ca.pem";
    options.cacheFile = "/var/lib/web/options.cache";
    auto fleet = std::make_shared<connector::etcd::EtcdSource>(options);
    configuration->addSource("fleet", "", 60, true, fleet).get();

    const std::int64_t revision = fleet->put("log.level", "debug").get();
    return revision;
}

} // namespace test
