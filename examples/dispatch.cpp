/// Gets options from a configuration service by messages: creates a request, dispatches it and
/// reads the reply from the future.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/service/ConfigurationGet.hpp>
#include <connector/configuration/service/ConfigurationOptionResponse.hpp>
#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>

#include <boost/variant/get.hpp>

#include <exception>
#include <iostream>
#include <memory>
#include <string>

using namespace connector::configuration;

namespace {

void show(connector::ServiceProvider& service, const std::string& key) {
    auto future = service.dispatch(std::make_unique<ConfigurationGet>(key),
                                   connector::Address("example"), nullptr);
    const std::unique_ptr<connector::Message> reply = future.get();
    const auto& response = dynamic_cast<const ConfigurationOptionResponse&>(*reply);
    if (const Option* const option = response.option.get())
        std::cout << option->key << " = " << boost::get<int>(option->value) << ", from "
                  << option->source << '\n';
    else
        std::cout << key << " is not set\n";
}

} // namespace

int main() {
    try {
        const auto configuration = std::make_shared<ConfigurationImpl>();
        configuration->addInMemorySource("site", "net", 100, true, {{"port", 8080}}).get();

        const auto service = std::make_shared<ConfigurationServiceProviderImpl>(configuration);
        service->start();
        show(*service, "net.port");
        show(*service, "net.host");
        service->stop();
        show(*service, "net.port"); // the future throws: the service is stopped
    } catch (const std::exception& failure) {
        std::cout << failure.what() << '\n';
    }
}
