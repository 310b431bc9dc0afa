#include <connector/service/http/HttpService.hpp>

namespace connector::service {

HttpService::HttpService(configuration::ConfigurationImpl& configuration, RequestGuard newGuard,
                         Policy newPolicy, const Secrets& newSecrets,
                         const Poco::Net::ServerSocket& socket, const HttpLimits& limits)
    : guard(std::move(newGuard)), policy(std::move(newPolicy)), secrets(newSecrets),
      service(
          configuration.getPtr(), [this](Message& message) { return policy.authorize(message); },
          defaultFileOrder),
      routes(service, configuration, secrets),
      events(secrets, limits.commentInterval, limits.maxWatchers), context{guard,           routes,
                                                                           configuration,   events,
                                                                           limits.timeouts, {}},
      server(socket, context) {
}

void HttpService::close() {
    service.stop();
    const Clock::time_point deadline = Clock::now() + context.timeouts.shutdown;
    context.shutdown.raise(deadline);
    events.finish(deadline);
    server.stop();
}

} // namespace connector::service
