/// One client and its one request.
#pragma once

#include <connector/service/http/HttpServer.hpp>
#include <connector/service/http/RequestReader.hpp>

#include <Poco/Net/TCPServerConnection.h>

namespace connector::service {

class Connection : public Poco::Net::TCPServerConnection {
public:
    Connection(const Poco::Net::StreamSocket& socket, Shared& newShared)
        : TCPServerConnection(socket), shared(newShared) {}

    /// Throws nothing: a client that went has nobody to be told.
    void run() override;

private:
    void serve();
    Answer answer(RequestReader& reader);
    static void send(Wire& wire, const Response& response, bool headOnly);
    bool watch(const std::string& key);

    Shared& shared;
};

} // namespace connector::service
