/// The configuration service over HTTP.
#pragma once

#include <connector/service/access/Policy.hpp>
#include <connector/service/http/HttpServer.hpp>
#include <connector/service/messages/MessageService.hpp>

#include <cstddef>

namespace connector::service {

struct HttpLimits {
    Timeouts timeouts;
    Clock::duration commentInterval = std::chrono::seconds(15); ///< see EventWriter
    std::size_t maxWatchers = 4096; ///< clients that watch at the same time
};

/// Serves clients from its construction until it is closed or destroyed.
class HttpService {
public:
    /// @param configuration  must outlive this object
    /// @param socket         must be listening
    HttpService(configuration::ConfigurationImpl& configuration, RequestGuard newGuard,
                Policy newPolicy, const Secrets& newSecrets, const Poco::Net::ServerSocket& socket,
                const HttpLimits& limits = {});

    /// Makes all later messages fail because the service is not running. Everything else continues.
    void stopMessages() { service.stop(); }

    /// Accepts no more connections, completes the event streams and waits for the requests in
    /// progress, at most for the shutdown timeout.
    void close();

private:
    const RequestGuard guard;
    const Policy policy;
    const Secrets secrets;
    MessageService service;
    const Routes routes;
    EventWriter events;
    ServerContext context;
    HttpServer server; // last, because it uses the other members
};

} // namespace connector::service
