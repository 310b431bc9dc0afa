#include <connector/service/http/HttpServer.hpp>

#include <connector/service/http/Connection.hpp>

#include <sys/socket.h>

namespace connector::service {

namespace {

constexpr int minThreads = 2;
constexpr int maxThreads = 1024;
constexpr int maxQueuedConnections = 4096;
constexpr int stackSize = 512 * 1024;
constexpr int poolIdleSeconds = 2;           // after which the pool removes an unused thread
constexpr long serverIdleMilliseconds = 500; // after which the server returns a thread to the pool

class ConnectionFactory : public Poco::Net::TCPServerConnectionFactory {
public:
    explicit ConnectionFactory(ServerContext& newContext) : context(newContext) {}

    Poco::Net::TCPServerConnection*
    createConnection(const Poco::Net::StreamSocket& socket) override {
        return new Connection(socket, context);
    }

private:
    ServerContext& context;
};

Poco::Net::TCPServerParams::Ptr parameters() {
    Poco::Net::TCPServerParams::Ptr parameters = new Poco::Net::TCPServerParams;
    parameters->setMaxThreads(maxThreads);
    parameters->setMaxQueued(maxQueuedConnections);
    parameters->setThreadIdleTime(serverIdleMilliseconds * Poco::Timespan::MILLISECONDS);
    return parameters;
}

} // namespace

HttpServer::HttpServer(const Poco::Net::ServerSocket& newSocket, ServerContext& newContext)
    : context(newContext), socket(newSocket),
      threads("http", minThreads, maxThreads, poolIdleSeconds, stackSize),
      server(new ConnectionFactory(context), threads, socket, parameters()) {
    server.start();
}

HttpServer::~HttpServer() {
    if (!context.shutdown.isRaised())
        context.shutdown.raise(Clock::now());
    stop();
}

void HttpServer::stop() {
    // Wakes up the accepting thread, which would otherwise notice only after a polling interval.
    ::shutdown(socket.impl()->sockfd(), SHUT_RD);
    server.stop();
    threads.joinAll();
}

} // namespace connector::service
