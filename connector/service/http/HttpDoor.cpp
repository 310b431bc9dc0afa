#include <connector/service/http/HttpDoor.hpp>

namespace connector_config::serve {

HttpDoor::HttpDoor(connector::configuration::ConfigurationImpl& configuration, Gate newGate,
                   Policy newPolicy, const Secrets& newSecrets,
                   const Poco::Net::ServerSocket& socket, const Limits& limits)
    : gate(std::move(newGate)), policy(std::move(newPolicy)), secrets(newSecrets),
      service(configuration.getPtr(),
              [this](connector::Message& message) { return policy.judge(message); }),
      resources(service, configuration, secrets),
      events(secrets, limits.commentInterval, limits.mostStreams),
      shared{gate, resources, configuration, events, limits.patience, {}}, server(socket, shared) {
}

void HttpDoor::close() {
    service.stop();
    const Clock::time_point deadline = Clock::now() + shared.patience.end;
    shared.ending.announce(deadline);
    events.finish(deadline);
    server.stop();
}

} // namespace connector_config::serve
