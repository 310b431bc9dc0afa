#include "configuration/service/boundary/Plugin.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/json/MessageJson.hpp>
#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>

#include <boost/variant/get.hpp>

#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

using namespace connector::configuration;

namespace {

std::shared_ptr<Configuration> makeConfiguration() {
    auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->set("net.port", 80).get();
    return configuration;
}

} // namespace

PLUGIN_EXPORT void makeProvider(std::shared_ptr<connector::ServiceProvider>& provider) {
    provider = std::make_shared<ConfigurationServiceProviderImpl>(makeConfiguration());
    provider->start();
}

PLUGIN_EXPORT void makeGet(const std::string& key, std::unique_ptr<connector::Message>& message) {
    message = std::make_unique<ConfigurationGet>(key);
}

PLUGIN_EXPORT void readNullObject() {
    deserializeConfigurationGet(nullptr);
}

PLUGIN_EXPORT void readWrongType() {
    boost::get<std::string>(makeConfiguration()->get("net.port").get());
}
