/// A client's connection and the one request on it.
#pragma once

#include <connector/service/http/HttpServer.hpp>
#include <connector/service/http/RequestReader.hpp>

#include <Poco/Net/TCPServerConnection.h>

namespace connector::service {

class Connection : public Poco::Net::TCPServerConnection {
public:
    /// @param newContext  must outlive this object
    Connection(const Poco::Net::StreamSocket& socket, ServerContext& newContext)
        : TCPServerConnection(socket), context(newContext) {}

    /// Serves the request. Throws nothing; if the client has left, there is nobody to report to.
    void run() override;

private:
    void serve();
    RouteResult handle(RequestReader& reader);
    bool startWatching(const std::string& key);

    ServerContext& context;
};

} // namespace connector::service
