#include <connector/service/protocol/Response.hpp>

#include <connector/service/messages/Reply.hpp>
#include <connector/service/text/Json.hpp>

#include <ctime>

namespace connector::service {

namespace {

/// RFC 9110, 5.6.7. Only the thread of the connections calls it, so a second's text can be kept.
const std::string& dateLine() {
    thread_local std::time_t shown = -1;
    thread_local std::string line;
    const std::time_t now = std::time(nullptr);
    if (now != shown) {
        std::tm fields{};
        ::gmtime_r(&now, &fields);
        char text[64];
        const std::size_t length =
            std::strftime(text, sizeof text, "Date: %a, %d %b %Y %H:%M:%S GMT\r\n", &fields);
        line.assign(text, length);
        shown = now;
    }
    return line;
}

std::string statusText(Status status) {
    return std::string(boost::beast::http::obsolete_reason(status));
}

/// Deliberately without the headers that would grant access to web pages of other origins.
std::string commonHead(Status status, const char* contentType) {
    std::string head;
    head.reserve(256);
    head += "HTTP/1.1 ";
    head += std::to_string(static_cast<unsigned>(status));
    head += ' ';
    head += statusText(status);
    head += "\r\n";
    head += dateLine();
    head += "Content-Type: ";
    head += contentType;
    head += "\r\nCache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\n";
    return head;
}

} // namespace

Response jsonResponse(std::string document, Status status) {
    document += '\n';
    Response response;
    response.status = status;
    response.body = std::make_shared<const std::string>(std::move(document));
    return response;
}

Response problemResponse(const HttpError& error) {
    Response response = problemResponse(error.status, errorJson(error.text), error.text, error.key);
    response.lines = error.lines;
    if (error.status == Status::unauthorized)
        response.lines += "WWW-Authenticate: Bearer\r\n";
    return response;
}

Response problemResponse(Status status, const std::string& reply, const std::string& detail,
                         const std::string& key) {
    Poco::JSON::Object::Ptr problem = makeObject();
    problem->set("type", "about:blank");
    problem->set("title", statusText(status));
    problem->set("status", static_cast<unsigned>(status));
    problem->set("detail", detail);
    if (!key.empty())
        problem->set("key", key);
    Response response =
        jsonResponse(reply.substr(0, reply.size() - 1) + ',' + jsonText(problem).substr(1), status);
    response.contentType = "application/problem+json";
    return response;
}

std::string formatHead(const Response& response, bool closes, bool isHttp11) {
    std::string head = commonHead(response.status, response.contentType);
    head += "Content-Length: ";
    head += std::to_string(response.body->size());
    head += "\r\n";
    head += response.lines;
    if (closes)
        head += "Connection: close\r\n";
    else if (!isHttp11)
        head += "Connection: keep-alive\r\n";
    head += "\r\n";
    return head;
}

std::string eventStreamHead() {
    return commonHead(Status::ok, "text/event-stream") + "Connection: close\r\n\r\n";
}

} // namespace connector::service
