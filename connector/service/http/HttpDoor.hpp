/// All that stands between a listening socket and the configuration.
#pragma once

#include <connector/service/access/Policy.hpp>
#include <connector/service/http/HttpServer.hpp>
#include <connector/service/messages/MessageService.hpp>

#include <cstddef>

namespace connector::service {

/// Where the patience and the room end.
struct Limits {
    Patience patience;
    Clock::duration commentInterval = std::chrono::seconds(15); ///< see EventWriter
    std::size_t mostStreams = 4096;                             ///< clients that watch at a time
};

/// Open as long as it lives, unless it is closed before.
class HttpDoor {
public:
    HttpDoor(connector::configuration::ConfigurationImpl& configuration, RequestGuard newGuard,
             Policy newPolicy, const Secrets& newSecrets, const Poco::Net::ServerSocket& socket,
             const Limits& limits = {});

    /// Every message from now on is told that the service does not run.
    void stopService() { service.stop(); }

    /// Completes the streams, gives everybody who is inside a little time, and lets nobody in.
    void close();

private:
    const RequestGuard guard;
    const Policy policy;
    const Secrets secrets;
    MessageService service;
    const Resources resources;
    EventWriter events;
    Shared shared;
    HttpServer server; // last, for it uses all the others
};

} // namespace connector::service
