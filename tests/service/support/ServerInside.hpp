/// The server in the process of the test, where its time and its limits are the test's.
#pragma once

#include <connector/service/http/HttpDoor.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <Poco/Net/ServerSocket.h>

#include <cstdint>
#include <memory>

namespace test {

/// Everything may be set.
class ServerInside {
public:
    explicit ServerInside(const connector::service::Limits& limits = {});

    std::uint16_t port() const { return socket.address().port(); }
    void stopService() { door.stopService(); }
    void close() { door.close(); }

    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        std::make_shared<connector::configuration::ConfigurationImpl>();

private:
    const Poco::Net::ServerSocket socket;
    connector::service::HttpDoor door;
};

} // namespace test
