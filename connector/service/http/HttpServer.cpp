#include <connector/service/http/HttpServer.hpp>

#include <connector/service/http/Connection.hpp>

#include <sys/socket.h>

namespace connector::service {

namespace {

constexpr int mostThreads = 1024;
constexpr int mostWaiting = 4096; // for a thread
constexpr int stackSize = 512 * 1024;
constexpr int secondsOfIdleness = 2;
constexpr long millisecondsForWork = 500; // a thread waits that long for work, or for the end

class ConnectionFactory : public Poco::Net::TCPServerConnectionFactory {
public:
    explicit ConnectionFactory(Shared& newShared) : shared(newShared) {}

    Poco::Net::TCPServerConnection*
    createConnection(const Poco::Net::StreamSocket& socket) override {
        return new Connection(socket, shared);
    }

private:
    Shared& shared;
};

Poco::Net::TCPServerParams::Ptr parameters() {
    Poco::Net::TCPServerParams::Ptr parameters = new Poco::Net::TCPServerParams;
    parameters->setMaxThreads(mostThreads);
    parameters->setMaxQueued(mostWaiting);
    parameters->setThreadIdleTime(millisecondsForWork * Poco::Timespan::MILLISECONDS);
    return parameters;
}

} // namespace

HttpServer::HttpServer(const Poco::Net::ServerSocket& socket, Shared& newShared)
    : shared(newShared), listening(socket),
      threads("http", 2, mostThreads, secondsOfIdleness, stackSize),
      server(new ConnectionFactory(shared), threads, socket, parameters()) {
    server.start();
}

HttpServer::~HttpServer() {
    if (!shared.ending.isAnnounced())
        shared.ending.announce(Clock::now());
    stop();
}

void HttpServer::stop() {
    // Wakes up the thread that accepts, which would look only now and then whether it is to stop.
    ::shutdown(listening.impl()->sockfd(), SHUT_RD);
    server.stop();
    threads.joinAll();
}

} // namespace connector::service
