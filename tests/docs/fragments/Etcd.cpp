/// The parts of programs in docs/etcd.md and docs/fleet.md.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/etcd/EtcdClient.hpp>
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

void addCanary(const std::shared_ptr<connector::configuration::ConfigurationImpl>& configuration,
               const std::shared_ptr<connector::etcd::EtcdSource>& canary,
               const std::shared_ptr<connector::etcd::EtcdSource>& fleet) {
    // The prefix "canary/web/", on a few machines only, and the prefix "fleet/web/"
    configuration->addSource("canary", "", 60, true, canary).get();
    configuration->addSource("fleet", "", 61, true, fleet).get();
}

void editEtcd(const connector::etcd::Options& options) {
    connector::etcd::EtcdClient client(options);
    const connector::etcd::Content content = client.read();
    const connector::etcd::Entry& level = content.entries.at("log.level");
    client.apply({{"log.level", connector::configuration::OptionValue(std::string("info")),
                   level.revision}});
}

} // namespace test
