#include <connector/service/http/Response.hpp>

#include <connector/service/messages/Reply.hpp>

#include <Poco/DateTimeFormat.h>
#include <Poco/Timestamp.h>

#include <sstream>

namespace connector::service {

namespace {

/// Deliberately without the headers that would grant access to web pages of other origins.
HTTPResponse commonHead(Status status, const char* contentType) {
    HTTPResponse head(Poco::Net::HTTPMessage::HTTP_1_1, status);
    head.setDate(Poco::Timestamp());
    head.setContentType(contentType);
    head.setKeepAlive(false);
    head.set("Cache-Control", "no-store");
    head.set("X-Content-Type-Options", "nosniff");
    return head;
}

std::string toText(const HTTPResponse& head) {
    std::ostringstream text;
    head.write(text);
    return text.str();
}

} // namespace

Response HttpError::response() const {
    return {status, errorJson(text), allow};
}

HttpError badRequest(const std::string& text) {
    return HttpError(HTTPResponse::HTTP_BAD_REQUEST, text);
}

std::string formatHead(const Response& response) {
    HTTPResponse head = commonHead(response.status, "application/json");
    head.setContentLength64(
        static_cast<Poco::Int64>(response.body.size() + sizeof bodyTerminator - 1));
    if (!response.allow.empty())
        head.set("Allow", response.allow);
    if (response.status == HTTPResponse::HTTP_UNAUTHORIZED)
        head.set("WWW-Authenticate", "Bearer");
    return toText(head);
}

std::string eventStreamHead() {
    return toText(commonHead(HTTPResponse::HTTP_OK, "text/event-stream"));
}

} // namespace connector::service
