/// A configuration that is served in the process of the test.
#pragma once

#include "support/TemporaryDirectory.hpp"

#include <connector/service/HttpClient.hpp>
#include <connector/service/HttpService.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace test {

/// Listens on a Unix socket, and on further addresses if a test asks for them.
class ServedConfiguration : public testing::Test {
protected:
    using HttpClient = connector::service::HttpClient;
    using HttpClientOptions = connector::service::HttpClientOptions;
    using HttpOptions = connector::service::HttpOptions;
    using HttpService = connector::service::HttpService;
    using ServiceError = connector::service::ServiceError;

    ServedConfiguration() {
        connector::service::ListenAddress address;
        address.path = (directory.path / "service.sock").string();
        options.addresses = {address};
        options.writablePrefixes = {"net."};
    }

    void start() {
        service.emplace(configuration, options);
        service->start();
    }

    void stop() {
        service->stop();
        service.reset();
    }

    HttpClientOptions clientOptions() const {
        HttpClientOptions client;
        client.url = service->urls().front();
        client.minRetry = client.maxRetry = std::chrono::milliseconds(1);
        return client;
    }

    const TemporaryDirectory directory;
    HttpOptions options;
    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        std::make_shared<connector::configuration::ConfigurationImpl>();
    std::optional<HttpService> service;
};

/// @return the error that a function throws
template <typename Function>
connector::service::ServiceError errorOf(Function function) {
    try {
        function();
    } catch (const connector::service::ServiceError& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return connector::service::ServiceError("");
}

} // namespace test
