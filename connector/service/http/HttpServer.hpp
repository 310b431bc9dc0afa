/// Accepts connections and serves them on a pool of threads.
#pragma once

#include <connector/service/access/RequestGuard.hpp>
#include <connector/service/http/EventWriter.hpp>
#include <connector/service/http/Routes.hpp>
#include <connector/service/http/ShutdownSignal.hpp>

#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/TCPServer.h>
#include <Poco/ThreadPool.h>

#include <chrono>

namespace connector::service {

/// How long the server waits.
struct Timeouts {
    Clock::duration request = std::chrono::seconds(10);  ///< for the whole request to arrive
    Clock::duration response = std::chrono::seconds(60); ///< for the client to accept the response
    Clock::duration close = std::chrono::seconds(3);     ///< for the client to close the connection
    Clock::duration shutdown = std::chrono::seconds(2);  ///< for all clients when the server stops
};

/// What the connections share. Everything in it may be used from any thread.
struct ServerContext {
    const RequestGuard& guard;
    const Routes& routes;
    configuration::ConfigurationImpl& configuration;
    EventWriter& events;
    const Timeouts timeouts;
    ShutdownSignal shutdown;
};

/// Serves one request per connection and uses one thread per request, so a slow client delays no
/// other. Clients that watch options occupy no thread, see EventWriter.
class HttpServer {
public:
    /// Starts to accept connections.
    /// @param newContext  must outlive this object
    HttpServer(const Poco::Net::ServerSocket& newSocket, ServerContext& newContext);
    ~HttpServer(); ///< stops; waits for no client unless the shutdown signal was raised before

    /// Stops accepting connections and waits for the requests in progress. The shutdown signal must
    /// have been raised; it limits how long this takes.
    void stop();

private:
    ServerContext& context;
    const Poco::Net::ServerSocket socket;
    Poco::ThreadPool threads;
    Poco::Net::TCPServer server;
};

} // namespace connector::service
