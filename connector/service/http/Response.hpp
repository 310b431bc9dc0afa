/// HTTP responses.
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
    std::string allow; ///< value of the "Allow" header; empty for none
};

/// A failure to serve a request. Connection turns it into a response.
class HttpError : public std::runtime_error {
public:
    HttpError(Status newStatus, const std::string& newText, std::string newAllow = {})
        : runtime_error(newText), status(newStatus), text(newText), allow(std::move(newAllow)) {}

    Response response() const;

    const Status status;
    const std::string text; ///< the whole text, while what() ends at a NUL
    const std::string allow;
};

/// @return an error with status 400
HttpError badRequest(const std::string& text);

/// What follows the body of each response.
constexpr char bodyTerminator[] = "\n";

/// @return the bytes before the body, with "Connection: Close": there is one response per
///         connection
std::string formatHead(const Response& response);

/// @return the bytes before a stream of server-sent events
std::string eventStreamHead();

} // namespace connector::service
