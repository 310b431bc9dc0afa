#include <connector/service/messages/ParsedRequest.hpp>

#include <connector/service/messages/RequestHandler.hpp>
#include <connector/service/messages/TooManyElements.hpp>
#include <connector/service/text/Utf8.hpp>

#include <stdexcept>

namespace connector::service {

namespace {

constexpr const char* whitespace = " \t\r\n";

bool startsAnObject(const std::string& text) {
    const std::size_t first = text.find_first_not_of(whitespace);
    return first != text.npos && text[first] == '{';
}

} // namespace

const Poco::JSON::Object::Ptr& ParsedRequest::content() const {
    switch (excess) {
    case Excess::Nesting:
        throw std::invalid_argument("A request has at most 64 levels of nesting");
    case Excess::Elements:
        throw TooManyElements();
    case Excess::None:
        break;
    }
    return object;
}

ParsedRequest parseRequest(const std::string& text) {
    if (text.size() > maxRequestSize)
        throw std::invalid_argument("A request is at most 1 MiB long");
    if (!isUtf8(text))
        throw std::invalid_argument("Text is not valid UTF-8");
    if (!startsAnObject(text))
        throw std::invalid_argument("A request is a JSON object");
    RequestHandler handler;
    readJson(text, handler);
    return handler.result(text);
}

bool isBlank(const std::string& text) {
    return text.find_first_not_of(whitespace) == std::string::npos;
}

} // namespace connector::service
