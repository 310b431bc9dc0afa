/// One HTTP request from a wire.
///
/// The head is Poco's to understand. The body is read here, because Poco's streams take a body that
/// was cut for a whole one, and a request that arrived by half must not be executed.
#pragma once

#include <connector/service/http/Wire.hpp>

#include <Poco/Net/HTTPRequest.h>

#include <string>

namespace connector::service {

class RequestReader {
public:
    explicit RequestReader(Wire& newWire) : wire(newWire) {}

    /// @throws HttpFailure   400 or 408
    /// @throws ClientLost    when the client went without a word
    const Poco::Net::HTTPRequest& readHead();

    /// @return whether the client wants no body; false as long as that is not known
    bool asksForHeadOnly() const { return head.getMethod() == head.HTTP_HEAD; }

    /// To be called once, behind readHead. Reads no further than is allowed.
    /// @throws HttpFailure  400, 408 or 413
    std::string readBody();

private:
    std::string takeHead();
    std::string readLength(const std::string& length);
    std::string readChunks();
    std::string take(std::size_t count);
    std::string takeLine();
    void skipTrailers();
    void receive();
    void askForBody();

    Wire& wire;
    Poco::Net::HTTPRequest head;
    std::string unread;    // what came and was not forgotten yet
    std::size_t taken = 0; // how much of that was handed out
};

} // namespace connector::service
