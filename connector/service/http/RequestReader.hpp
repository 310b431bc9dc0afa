/// Reads one HTTP request from a socket.
///
/// Poco parses the head. The body is read here, because Poco's streams accept a body that ends too
/// early, and half a request must not be executed.
#pragma once

#include <connector/service/http/TimedSocket.hpp>

#include <Poco/Net/HTTPRequest.h>

#include <string>

namespace connector::service {

class RequestReader {
public:
    /// @param newSocket  must outlive this object
    explicit RequestReader(TimedSocket& newSocket) : socket(newSocket) {}

    /// @throws HttpError       status 400 or 408
    /// @throws ConnectionLost  the client has left without sending anything
    const Poco::Net::HTTPRequest& readHead();

    /// @return whether the response must have no body; false as long as the head has not been read
    bool isHeadRequest() const { return head.getMethod() == head.HTTP_HEAD; }

    /// Must be called after readHead, at most once. Stops reading when the body exceeds
    /// maxRequestSize.
    /// @throws HttpError  status 400, 408 or 413
    std::string readBody();

private:
    std::string takeHead();
    std::string readFixedLength(const std::string& length);
    std::string readChunks();
    std::string take(std::size_t count);
    std::string takeLine();
    void skipTrailers();
    void receiveMore();
    void sendContinueIfExpected();

    TimedSocket& socket;
    Poco::Net::HTTPRequest head;
    std::string received;  // bytes from the socket, some of which have been taken already
    std::size_t taken = 0; // how many of them
};

} // namespace connector::service
