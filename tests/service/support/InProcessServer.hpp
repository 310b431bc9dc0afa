/// A server in the process of the test, which sets its limits.
#pragma once

#include <connector/service/HttpService.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <cstdint>
#include <memory>

namespace test {

/// Clients may set all keys.
class InProcessServer {
public:
    explicit InProcessServer(const connector::service::HttpLimits& limits = {});
    explicit InProcessServer(const connector::service::HttpOptions& options);

    std::uint16_t port() const;
    void close() { service.stop(); }

    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        std::make_shared<connector::configuration::ConfigurationImpl>();
    connector::service::HttpService service;
};

} // namespace test
