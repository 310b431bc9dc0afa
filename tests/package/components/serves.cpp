// Serves a configuration with the installed library.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/service/HttpService.hpp>

#include <iostream>
#include <memory>

int main() {
    const auto configuration = std::make_shared<connector::configuration::ConfigurationImpl>();
    connector::service::HttpOptions options; // any free port of the loopback address
    connector::service::HttpService service(configuration, options);
    service.start();
    std::cout << service.urls().front().substr(0, 17) << '\n';
    service.stop();
}
