#include <connector/service/http/HttpDoor.hpp>

namespace connector::service {

HttpDoor::HttpDoor(connector::configuration::ConfigurationImpl& configuration,
                   RequestGuard newGuard, Policy newPolicy, const Secrets& newSecrets,
                   const Poco::Net::ServerSocket& socket, const Limits& limits)
    : guard(std::move(newGuard)), policy(std::move(newPolicy)), secrets(newSecrets),
      service(configuration.getPtr(),
              [this](connector::Message& message) { return policy.judge(message); }),
      resources(service, configuration, secrets),
      events(secrets, limits.commentInterval, limits.mostStreams),
      shared{guard, resources, configuration, events, limits.patience, {}}, server(socket, shared) {
}

void HttpDoor::close() {
    service.stop();
    const Clock::time_point deadline = Clock::now() + shared.patience.end;
    shared.ending.announce(deadline);
    events.finish(deadline);
    server.stop();
}

} // namespace connector::service
