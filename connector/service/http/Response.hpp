/// What an HTTP client gets.
#pragma once

#include <Poco/Net/HTTPResponse.h>

#include <stdexcept>
#include <string>

namespace connector::service {

using Poco::Net::HTTPResponse;
using Status = HTTPResponse::HTTPStatus;

struct Response {
    Status status;
    std::string body;  ///< a JSON document
    std::string allow; ///< the method that the path is for, if it is not the one that was used
};

/// Why a request is not served; caught where it is answered.
class HttpFailure : public std::runtime_error {
public:
    HttpFailure(Status newStatus, const std::string& newText, std::string newAllow = {})
        : runtime_error(newText), status(newStatus), text(newText), allow(std::move(newAllow)) {}

    Response response() const;

    const Status status;
    const std::string text; ///< whole, where what() ends at a NUL character
    const std::string allow;
};

/// What ends the body of a response.
constexpr char bodyEnd[] = "\n";

/// @return the bytes in front of the body; there is one response for each connection
std::string headOf(const Response& response);

/// @return the bytes that begin a stream of server-sent events
std::string beginningOfEvents();

} // namespace connector::service
