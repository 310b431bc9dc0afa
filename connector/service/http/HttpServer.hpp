/// The engine: all connections on one thread, the work of their requests on a few others.
///
/// The network thread never takes the configuration's mutex, and no worker ever waits for a client.
/// Lock order: the configuration's mutex, then those of ChangedKeys and Workers, which are held for
/// a few instructions each.
#pragma once

#include <connector/service/HttpOptions.hpp>
#include <connector/service/events/EventHub.hpp>
#include <connector/service/http/Connection.hpp>
#include <connector/service/http/ServerContext.hpp>
#include <connector/service/http/SharedResponses.hpp>
#include <connector/service/http/SharedTexts.hpp>
#include <connector/service/network/Listener.hpp>
#include <connector/service/network/Places.hpp>
#include <connector/service/network/Workers.hpp>
#include <connector/service/network/WriteTurns.hpp>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace connector::service {

class HttpServer {
public:
    /// Listens, but serves nobody yet. All arguments outlive the server.
    /// @throws std::runtime_error  see Listener and makeServerContext
    HttpServer(const HttpOptions& newOptions, const Router& router, const RequestGuard& guard,
               configuration::ConfigurationImpl& configuration, const Secrets& secrets,
               Metrics& metrics);

    ~HttpServer(); ///< cuts what is in progress

    /// Serves clients on a thread of its own. Does nothing the second time.
    void start();

    /// Accepts nobody any more, ends event streams, and waits for the requests in progress, at most
    /// for the time limit of the shutdown.
    void stop();

    /// Uses the TLS files as they are now, for later connections. May be called from any thread.
    /// @throws std::runtime_error  see makeServerContext; the old ones stay
    void reloadTls();

    /// @return where clients reach the server, in the order of the options
    const std::vector<std::string>& urls() const { return addresses; }

private:
    void run() noexcept;
    void runWaitingHandlers() noexcept;
    void releaseHandlers() noexcept;
    void resume();
    void accept(Socket socket, const Peer& peer);
    void tick();
    void scheduleTick();
    void sweep();
    void beginStop();
    void endIfDone();

    const HttpOptions& options;
    boost::asio::io_context io{1};
    // The network thread ends when it is told to, also if no handler waits because none had memory.
    const boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard{
        io.get_executor()};
    SharedTexts texts;
    Workers workers;
    WriteTurns turns;
    EventHub events;
    SharedResponses shared;
    ServerContext context;
    std::shared_ptr<boost::asio::ssl::context> tls; // used by the network thread
    std::list<Listener> listeners;
    std::vector<std::string> addresses;
    std::list<std::shared_ptr<Connection>> connections;
    Places places;
    boost::asio::steady_timer timer;
    bool isTimerSet = false;
    Clock::time_point stopDeadline = never;
    bool hasStarted = false;
    std::thread thread;
};

} // namespace connector::service
