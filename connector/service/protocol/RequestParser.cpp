#include <connector/service/protocol/RequestParser.hpp>

#include <connector/service/text/Number.hpp>

#include <boost/asio/buffer.hpp>
#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <iterator>

namespace connector::service {

namespace http = boost::beast::http;
using boost::beast::error_code;

namespace {

/// The size line of a chunk with its extensions, all trailers, and the extensions of all chunks,
/// each.
constexpr std::size_t maxChunkLine = 8 * 1024;

HttpError badRequest(const std::string& text) {
    return HttpError(Status::bad_request, text);
}

HttpError tooLarge() {
    return HttpError(Status::payload_too_large, "A request is at most 1 MiB long");
}

HttpError errorOf(const error_code& error) {
    if (error == http::error::header_limit)
        return HttpError(Status::request_header_fields_too_large,
                         "Head of the request is longer than 32 KiB");
    if (error == http::error::body_limit)
        return tooLarge();
    if (error == http::error::bad_content_length)
        return badRequest("Content-Length is not a single number");
    if (error == http::error::bad_transfer_encoding)
        return badRequest("Transfer encoding is not chunked");
    if (error == http::error::bad_chunk || error == http::error::bad_chunk_extension)
        return badRequest("Chunk without a size");
    if (error == http::error::buffer_overflow)
        return badRequest("Extensions of the chunks are too long");
    if (error == http::error::bad_version)
        return badRequest("Neither HTTP/1.0 nor HTTP/1.1");
    return badRequest("Not an HTTP request");
}

bool isControl(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return (code < ' ' && byte != '\t') || code == 0x7F;
}

} // namespace

RequestParser::RequestParser(std::size_t newHeadSize, std::size_t newBodySize)
    : headSize(newHeadSize), bodySize(newBodySize) {
    parser.header_limit(static_cast<std::uint32_t>(headSize));
    parser.body_limit(bodySize);
    limitExtensions = [this](std::uint64_t, boost::beast::string_view text, error_code& error) {
        extensions += text.size();
        if (extensions > maxChunkLine)
            error = http::error::buffer_overflow;
    };
    parser.on_chunk_header(limitExtensions);
}

bool RequestParser::readHead(std::string& input) {
    skipEmptyLines(input);
    if (isBeginningOfEmptyLine(input))
        return false;
    const std::string_view text = input;
    const std::size_t start = checked < 3 ? 0 : checked - 3; // the end may have begun to arrive
    const std::size_t blank = text.find("\r\n\r\n", start);
    const bool isComplete = blank != text.npos;
    const std::size_t end = isComplete ? blank + 4 : text.size();
    checkHead(text.substr(0, end));
    if (skipped + end > headSize)
        throw errorOf(http::error::header_limit);
    if (!isComplete)
        return false;
    parseHead(text.substr(0, end));
    input.erase(0, end);
    decideBody();
    return true;
}

/// Some clients send a line break behind the body of the previous request (RFC 9112, 2.2).
void RequestParser::skipEmptyLines(std::string& input) {
    if (checked > 0)
        return;
    std::size_t count = 0;
    while (input.compare(count, 2, "\r\n") == 0)
        count += 2;
    input.erase(0, count);
    skipped += count;
}

/// Looks at each byte once, so a client that sends single bytes costs no more than another one.
void RequestParser::checkHead(std::string_view text) {
    for (; checked < text.size(); ++checked) {
        const char byte = text[checked];
        const char previous = checked == 0 ? '\n' : text[checked - 1];
        const bool isBlank = byte == ' ' || byte == '\t';
        const bool isBad = (byte == '\n') != (previous == '\r' && checked > 0) ||
                           (isControl(byte) && byte != '\r' && byte != '\n') ||
                           (previous == '\n' && isBlank) || // folded
                           (isInHeaders && previous == '=' && byte == '?');
        if (isBad)
            throw badRequest("Not an HTTP request");
        isInHeaders = isInHeaders || byte == '\n';
    }
}

void RequestParser::parseHead(std::string_view text) {
    error_code error;
    parser.put(boost::asio::buffer(text.data(), text.size()), error);
    completeHead = parser.get().base(); // of a head that is refused, what can be said of it
    if (error && error != http::error::need_more)
        throw errorOf(error);
    if (!parser.is_header_done())
        throw badRequest("Not an HTTP request");
}

/// One length, or exactly "chunked" in HTTP/1.1, or no body.
void RequestParser::decideBody() {
    const auto lengths = completeHead.count(http::field::content_length);
    const auto encodings = completeHead.count(http::field::transfer_encoding);
    if (lengths + encodings > 1)
        throw badRequest("Length of the body is told twice");
    if (encodings == 1) {
        const auto encoding = completeHead[http::field::transfer_encoding];
        if (!boost::beast::iequals(encoding, "chunked") || completeHead.version() != 11)
            throw badRequest("Transfer encoding is not chunked");
        isChunked = true;
        return;
    }
    if (lengths == 0)
        return;
    const auto text = completeHead[http::field::content_length];
    const auto number = readNumber<std::uint64_t>({text.data(), text.size()});
    if (!number)
        throw errorOf(http::error::bad_content_length);
    if (*number > bodySize)
        throw tooLarge();
    length = static_cast<std::size_t>(*number);
}

bool RequestParser::expectsContinue() const {
    return hasBody() && completeHead.version() == 11 &&
           boost::beast::iequals(completeHead[http::field::expect], "100-continue");
}

bool RequestParser::readBody(std::string& input) {
    return isChunked ? readChunks(input) : readLength(input);
}

/// Without the parser, which would reserve memory for all of the body before any of it arrives.
bool RequestParser::readLength(std::string& input) {
    if (input.size() < length)
        return false;
    body = input.substr(0, length);
    input.erase(0, length);
    return true;
}

bool RequestParser::readChunks(std::string& input) {
    parser.eager(true);
    std::size_t taken = 0;
    while (!parser.is_done()) {
        error_code error;
        const std::size_t count =
            parser.put(boost::asio::buffer(input.data() + taken, input.size() - taken), error);
        taken += count;
        if (error == http::error::need_more || (!error && count == 0))
            break;
        if (error)
            throw errorOf(error);
    }
    input.erase(0, taken);
    if (parser.is_done())
        body = std::move(parser.get().body());
    else if (input.size() > maxChunkLine)
        throw badRequest("Line between chunks is too long");
    return parser.is_done();
}

std::string_view onlyValue(const RequestHead& head, std::string_view name) {
    const auto [first, last] =
        head.equal_range(boost::beast::string_view(name.data(), name.size()));
    if (first == last)
        return {};
    if (std::next(first) != last)
        throw badRequest(std::string(name) + " is there twice");
    return {first->value().data(), first->value().size()};
}

} // namespace connector::service
