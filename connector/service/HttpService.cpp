#include <connector/service/HttpService.hpp>

#include <connector/service/access/Policy.hpp>
#include <connector/service/http/HttpServer.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/protocol/Router.hpp>
#include <connector/service/routes/Services.hpp>

#include <optional>
#include <stdexcept>
#include <utility>

namespace connector::service {

namespace {

std::optional<Token> tokenOf(const HttpOptions& options) {
    if (!options.tokenFile)
        return std::nullopt;
    return readToken(*options.tokenFile);
}

Policy policyOf(const HttpOptions& options, const Secrets& secrets) {
    std::optional<PropertyRoot> root;
    if (options.propertyRoot)
        root.emplace(*options.propertyRoot);
    return Policy(options.writablePrefixes, std::move(root), secrets, options.maxFileSize);
}

RequestGuard guardOf(const HttpOptions& options) {
    std::vector<std::string> hosts;
    for (const ListenAddress& address : options.addresses) {
        if (!address.isUnix())
            hosts.push_back(address.host);
    }
    return RequestGuard(std::move(hosts), options.allowedHosts, tokenOf(options));
}

const std::shared_ptr<configuration::ConfigurationImpl>&
demand(const std::shared_ptr<configuration::ConfigurationImpl>& configuration) {
    if (!configuration)
        throw std::invalid_argument("A null configuration cannot be served.");
    return configuration;
}

} // namespace

class HttpService::Impl {
public:
    Impl(const std::shared_ptr<configuration::ConfigurationImpl>& newConfiguration,
         const HttpOptions& newOptions)
        : configuration(demand(newConfiguration)), options(newOptions),
          secrets(options.secretGlobs), policy(policyOf(options, secrets)), guard(guardOf(options)),
          messages(
              configuration, [this](Message& message) { return policy.authorize(message); },
              defaultFileOrder) {
        const Services services{*configuration, messages, policy, secrets, metrics};
        addOptionOperations(router, services);
        addMessageOperation(router, services);
        addWatchOperation(router);
        addHealthOperations(router);
        addMetricsOperation(router, services);
        addDescriptionOperation(router);
        metrics.setRoutes(router.routes());
        server.emplace(options, router, guard, *configuration, secrets, metrics);
    }

    const std::shared_ptr<configuration::ConfigurationImpl> configuration;
    const HttpOptions options;
    const Secrets secrets;
    const Policy policy;
    const RequestGuard guard;
    const MessageService messages;
    Router router;
    Metrics metrics;
    std::optional<HttpServer> server; // last, because it uses the other members
};

HttpService::HttpService(const std::shared_ptr<configuration::ConfigurationImpl>& configuration,
                         const HttpOptions& options)
    : impl(std::make_unique<Impl>(configuration, options)) {
}

HttpService::~HttpService() = default;

void HttpService::start() {
    impl->server->start();
}

void HttpService::stop() {
    impl->server->stop();
}

std::vector<std::string> HttpService::urls() const {
    return impl->server->urls();
}

void HttpService::reloadTls() {
    impl->server->reloadTls();
}

void HttpService::countReload(bool succeeded) noexcept {
    ++(succeeded ? impl->metrics.reloads : impl->metrics.failedReloads);
}

} // namespace connector::service
