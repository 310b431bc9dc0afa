/// The server in the process of the test, where its time and its limits are the test's.
#pragma once

#include "serve/MessageService.hpp"
#include "serve/http/HttpServer.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <Poco/Net/ServerSocket.h>

#include <chrono>
#include <cstdint>
#include <memory>

namespace test {

class ServerInside {
public:
    struct Limits {
        connector_config::serve::Patience patience;
        connector_config::serve::Clock::duration commentInterval = std::chrono::hours(1);
        std::size_t mostStreams = 100;
    };

    explicit ServerInside(const Limits& limits);
    ServerInside() : ServerInside(Limits()) {}

    std::uint16_t port() const { return socket.address().port(); }

    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        std::make_shared<connector::configuration::ConfigurationImpl>();
    connector_config::serve::MessageService service{configuration};

private:
    const connector_config::Secrets secrets;
    const connector_config::serve::Gate gate{"", {}};
    const connector_config::serve::Resources resources{service, *configuration, secrets};
    connector_config::serve::EventWriter events;
    connector_config::serve::Shared shared;
    Poco::Net::ServerSocket socket;
    connector_config::serve::HttpServer server;
};

} // namespace test
