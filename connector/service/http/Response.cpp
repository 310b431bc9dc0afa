#include <connector/service/http/Response.hpp>

#include <connector/service/messages/Reply.hpp>

#include <Poco/DateTimeFormat.h>
#include <Poco/Timestamp.h>

#include <sstream>

namespace connector::service {

namespace {

/// No header here lets another site's page in.
HTTPResponse commonHead(Status status, const char* contentType) {
    HTTPResponse head(Poco::Net::HTTPMessage::HTTP_1_1, status);
    head.setDate(Poco::Timestamp());
    head.setContentType(contentType);
    head.setKeepAlive(false);
    head.set("Cache-Control", "no-store");
    head.set("X-Content-Type-Options", "nosniff");
    return head;
}

std::string textOf(const HTTPResponse& head) {
    std::ostringstream text;
    head.write(text);
    return text.str();
}

} // namespace

Response HttpFailure::response() const {
    return {status, errorText(text), allow};
}

std::string headOf(const Response& response) {
    HTTPResponse head = commonHead(response.status, "application/json");
    head.setContentLength64(static_cast<Poco::Int64>(response.body.size() + sizeof bodyEnd - 1));
    if (!response.allow.empty())
        head.set("Allow", response.allow);
    if (response.status == HTTPResponse::HTTP_UNAUTHORIZED)
        head.set("WWW-Authenticate", "Bearer");
    return textOf(head);
}

std::string beginningOfEvents() {
    return textOf(commonHead(HTTPResponse::HTTP_OK, "text/event-stream"));
}

} // namespace connector::service
