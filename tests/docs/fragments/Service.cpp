/// The parts of programs in docs/messages.md.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/service/HttpClient.hpp>
#include <connector/service/HttpService.hpp>

#include <memory>

namespace test {

void use(const connector::configuration::OptionValue& value);

void serve(const std::shared_ptr<connector::configuration::ConfigurationImpl>& configuration) {
    connector::service::HttpOptions options; // by default 127.0.0.1 and any free port
    options.addresses = {{"127.0.0.1", 8080, ""}};
    connector::service::HttpService service(configuration, options);
    service.start(); // serves on threads of its own until stop() or its end
}

void ask() {
    connector::service::HttpClientOptions options;
    options.url = "unix:/run/site/configuration.sock";
    connector::service::HttpClient client(options);
    client.set("net.port", 8080);
    if (const auto option = client.get("net.port"))
        use(option->value);
    client.watch({{"net.port"}, {}}, [](const auto& option) { use(option.value); });
}

} // namespace test
