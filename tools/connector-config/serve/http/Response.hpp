/// What an HTTP client gets.
#pragma once

#include <Poco/Net/HTTPResponse.h>

#include <exception>
#include <stdexcept>
#include <string>

namespace connector_config::serve {

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
    HttpFailure(Status newStatus, const std::string& text, std::string newAllow = {})
        : runtime_error(text), status(newStatus), allow(std::move(newAllow)) {}

    Response response() const;

    const Status status;
    const std::string allow;
};

/// @return the bytes of a response; there is one response for each connection
std::string bytesOf(const Response& response);

/// @return the bytes that begin a stream of server-sent events
std::string beginningOfEvents();

} // namespace connector_config::serve
