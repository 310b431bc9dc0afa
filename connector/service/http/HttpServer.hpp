/// The listening end.
#pragma once

#include <connector/service/access/RequestGuard.hpp>
#include <connector/service/http/EventWriter.hpp>
#include <connector/service/http/Resources.hpp>

#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/TCPServer.h>
#include <Poco/ThreadPool.h>

#include <chrono>

namespace connector::service {

/// How long who is waited for.
struct Patience {
    Clock::duration request = std::chrono::seconds(10);  ///< for all of a request to come
    Clock::duration response = std::chrono::seconds(60); ///< for all of a response to be taken
    Clock::duration goodbye = std::chrono::seconds(3);   ///< for the client to hang up
    Clock::duration end = std::chrono::seconds(2);       ///< for everything, once the server ends
};

/// What the threads of the server share. All of it may be used by all of them.
struct Shared {
    const RequestGuard& guard;
    const Resources& resources;
    connector::configuration::ConfigurationImpl& configuration;
    EventWriter& events;
    const Patience patience;
    Ending ending;
};

/// One request a connection, one thread a request: a client that is slow takes nothing from the
/// others but one thread of many. Those who watch need none, see EventWriter.
class HttpServer {
public:
    /// Serves from now on.
    HttpServer(const Poco::Net::ServerSocket& socket, Shared& newShared);
    ~HttpServer(); ///< stops, and waits for no client if the end was not announced

    /// Accepts nobody any more and waits for the requests that have begun. Whoever waits for a client
    /// is told by the ending, which must have been announced.
    void stop();

private:
    Shared& shared;
    const Poco::Net::ServerSocket listening;
    Poco::ThreadPool threads;
    Poco::Net::TCPServer server;
};

} // namespace connector::service
