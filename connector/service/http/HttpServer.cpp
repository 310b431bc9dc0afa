#include <connector/service/http/HttpServer.hpp>

#include <connector/service/network/TlsContext.hpp>

#include <boost/asio/post.hpp>

#include <algorithm>
#include <chrono>
#include <utility>

#include <pthread.h>
#include <signal.h>

namespace connector::service {

namespace {

/// Enough for a request that waits for a slow source, or for the configuration's mutex, not to hold
/// up the others. Each may have the objects of one request in memory, see ParsedRequest.hpp.
constexpr std::size_t workerThreads = 4;

constexpr HttpLimits::Duration longestTick{100};
constexpr HttpLimits::Duration resumeInterval{10};

/// @return how often deadlines are looked at: often enough for the shortest one
HttpLimits::Duration tickOf(const HttpLimits& limits) {
    const auto shortest = std::min({limits.connect, limits.head, limits.request, limits.idle,
                                    limits.stall, limits.close, limits.shutdown, limits.comment});
    return std::clamp(shortest / 10, HttpLimits::Duration(1), longestTick);
}

/// Signals are for the threads of the application.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previous);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &previous, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t previous{};
};

} // namespace

HttpServer::HttpServer(const HttpOptions& newOptions, const Router& router,
                       const RequestGuard& guard, configuration::ConfigurationImpl& configuration,
                       const Secrets& secrets, Metrics& metrics)
    : options(newOptions), workers(io), turns(io), events(io, configuration, secrets, workers),
      shared(workers, texts), context{options.limits, router, guard, workers, turns,
                                      events,         shared, texts, metrics},
      places(options.limits.connections), timer(io) {
    if (options.tls)
        tls = makeServerContext(*options.tls);
    for (const ListenAddress& address : options.addresses) {
        listeners.emplace_back(
            io, address, tls != nullptr,
            [this](Socket socket, const Peer& peer) { accept(std::move(socket), peer); });
        addresses.push_back(listeners.back().url());
    }
}

HttpServer::~HttpServer() {
    io.stop();
    if (thread.joinable())
        thread.join();
    workers.stop();
    for (Listener& listener : listeners)
        listener.close();
    for (const auto& connection : connections)
        connection->close();
    turns.close();
    connections.clear();
    events.close();
    timer.cancel();
    releaseHandlers();
}

/// Handlers keep connections alive, which use the other members. Now that everything is closed,
/// each handler that still waits only notices that.
void HttpServer::releaseHandlers() noexcept {
    try {
        io.restart();
        while (io.poll() > 0) {
        }
    } catch (...) { // no memory for a handler that does nothing any more
    }
}

void HttpServer::start() {
    if (hasStarted) // a thread that is replaced while it runs would end the program
        return;
    const BlockedSignals blocked; // threads inherit the mask
    workers.start(workerThreads);
    resume();
    thread = std::thread([this] { run(); });
    hasStarted = true;
}

/// A handler fails only when there is no memory. What it did not start is started again as soon as
/// there is some. Until then, the handlers that still wait are served: they release memory.
void HttpServer::run() noexcept {
    bool isComplete = true;
    while (!io.stopped()) {
        try {
            if (!isComplete)
                resume();
            isComplete = true;
            io.run();
        } catch (...) {
            isComplete = false;
            runWaitingHandlers();
        }
    }
}

void HttpServer::runWaitingHandlers() noexcept {
    try {
        io.run_for(resumeInterval);
    } catch (...) { // no memory either
    }
}

/// First what needs no memory and releases some.
void HttpServer::resume() {
    workers.resume();
    turns.start();
    events.start();
    if (!context.isStopping) {
        for (Listener& listener : listeners)
            listener.start();
    }
    if (!connections.empty())
        scheduleTick();
}

void HttpServer::accept(Socket socket, const Peer& peer) {
    if (!places.take(peer))
        return; // the socket is closed
    try {
        connections.push_back(std::make_shared<Connection>(context, std::move(socket), peer,
                                                           peer.isTls ? tls : nullptr));
    } catch (...) { // no memory
        places.giveBack(peer);
        throw;
    }
    scheduleTick();
    connections.back()->start();
}

/// One timer for all deadlines: it costs no request anything, and nothing while nobody is there.
void HttpServer::scheduleTick() {
    if (isTimerSet)
        return;
    timer.expires_after(tickOf(options.limits));
    timer.async_wait([this](const boost::system::error_code& error) {
        isTimerSet = false;
        if (!error)
            tick();
    });
    isTimerSet = true;
}

void HttpServer::tick() {
    const Clock::time_point now = Clock::now();
    for (const auto& connection : connections)
        connection->tick(now);
    sweep();
    events.tick();
    if (now >= stopDeadline) {
        for (const auto& connection : connections)
            connection->close();
        connections.clear();
    }
    if (!connections.empty())
        scheduleTick();
    endIfDone();
}

/// Removes the connections that have ended.
void HttpServer::sweep() {
    for (auto connection = connections.begin(); connection != connections.end();) {
        if (!(*connection)->isClosed()) {
            ++connection;
            continue;
        }
        places.giveBack((*connection)->peer());
        connection = connections.erase(connection);
    }
}

void HttpServer::stop() {
    if (!thread.joinable())
        return;
    boost::asio::post(io, [this] { beginStop(); });
    thread.join();
    workers.stop();
}

void HttpServer::beginStop() {
    context.isStopping = true;
    for (Listener& listener : listeners)
        listener.close();
    const Clock::time_point now = Clock::now();
    stopDeadline = now + options.limits.shutdown;
    const Clock::time_point last = now + options.limits.shutdown / 5 * 4;
    for (const auto& connection : connections)
        connection->finish(last);
    sweep();
    endIfDone();
}

void HttpServer::endIfDone() {
    if (!context.isStopping || !connections.empty())
        return;
    turns.close();
    events.close();
    io.stop();
}

void HttpServer::reloadTls() {
    if (!options.tls)
        return;
    boost::asio::post(io, [this, loaded = makeServerContext(*options.tls)] { tls = loaded; });
}

} // namespace connector::service
