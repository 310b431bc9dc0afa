/// HTTP responses.
#pragma once

#include <connector/service/protocol/HttpError.hpp>

#include <memory>
#include <string>

namespace connector::service {

struct Response {
    Status status = Status::ok;
    std::shared_ptr<const std::string> body; ///< shared by all clients that get the same; not null
    const char* contentType = "application/json";
    std::string lines; ///< further header lines, each with its line break
};

/// @return a response with this JSON document and a line break
Response jsonResponse(std::string document, Status status = Status::ok);

/// @return a problem document (RFC 9457) which also has the "error" of a reply
Response problemResponse(const HttpError& error);

/// Turns the JSON of a failed reply into a problem document.
/// @param reply  a JSON object
Response problemResponse(Status status, const std::string& reply, const std::string& detail,
                         const std::string& key);

/// @param closes  whether the connection ends after the response
/// @param isHttp11  whether the client speaks HTTP/1.1
std::string formatHead(const Response& response, bool closes, bool isHttp11);

/// @return the head of the response to a request for events, which ends with the connection
std::string eventStreamHead();

} // namespace connector::service
