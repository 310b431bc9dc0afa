/// A server in the process of the test, which sets its limits and timeouts.
#pragma once

#include <connector/service/http/HttpService.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <Poco/Net/ServerSocket.h>

#include <cstdint>
#include <memory>

namespace test {

/// Clients may set all keys.
class InProcessServer {
public:
    explicit InProcessServer(const connector::service::HttpLimits& limits = {});

    std::uint16_t port() const { return socket.address().port(); }
    void stopMessages() { service.stopMessages(); }
    void close() { service.close(); }

    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        std::make_shared<connector::configuration::ConfigurationImpl>();

private:
    const Poco::Net::ServerSocket socket;
    connector::service::HttpService service;
};

} // namespace test
