#include <connector/service/http/RequestReader.hpp>

#include <connector/service/http/Response.hpp>
#include <connector/service/messages/ParsedRequest.hpp>
#include <connector/service/text/Number.hpp>

#include <Poco/Exception.h>
#include <Poco/String.h>

#include <algorithm>
#include <charconv>
#include <sstream>

namespace connector::service {

namespace {

constexpr std::size_t maxHeadSize = 32 * 1024;
constexpr std::size_t maxChunkLineSize = 4096; // of a chunk's size line and of a trailer
constexpr int maxTrailers = 100;

HttpError tooLong() {
    return HttpError(HTTPResponse::HTTP_REQUEST_ENTITY_TOO_LARGE,
                     "A request is at most 1 MiB long");
}

void removeCarriageReturn(std::string& line) {
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
}

/// @return the position of the first line that is not empty
std::size_t startOfHead(const std::string& bytes) {
    std::size_t start = 0;
    for (;;) {
        if (bytes.compare(start, 1, "\n") == 0)
            start += 1;
        else if (bytes.compare(start, 2, "\r\n") == 0)
            start += 2;
        else
            return start;
    }
}

/// @return the position after the empty line that ends the head; 0 if it has not arrived yet
std::size_t endOfHead(const std::string& bytes, std::size_t start) {
    for (std::size_t line = start; line < bytes.size();) {
        const std::size_t end = bytes.find('\n', line);
        if (end == bytes.npos)
            break;
        if (end == line || (end == line + 1 && bytes[line] == '\r'))
            return end + 1;
        line = end + 1;
    }
    return 0;
}

bool isForbidden(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return (code < ' ' && byte != '\t') || code == 0x7f;
}

bool isHeader(const std::string& line) {
    const std::size_t nameEnd = line.find_first_of(": \t");
    return nameEnd != line.npos && nameEnd > 0 && line[nameEnd] == ':';
}

/// Stricter than Poco, which skips leading whitespace, joins or ignores lines without a colon, and
/// accepts control characters. No well-behaved client sends such a head.
bool isWellFormed(const std::string& head) {
    std::istringstream text(head);
    bool isFirst = true;
    for (std::string line; std::getline(text, line); isFirst = false) {
        removeCarriageReturn(line);
        if (line.empty())
            return true; // the end of the head
        const bool hasForm = isFirst ? line.front() != ' ' && line.front() != '\t' : isHeader(line);
        if (!hasForm || std::any_of(line.begin(), line.end(), isForbidden))
            return false;
    }
    return true;
}

auto countHeaders(const Poco::Net::HTTPRequest& head, const std::string& name) {
    return std::count_if(head.begin(), head.end(), [&name](const auto& header) {
        return Poco::icompare(header.first, name) == 0;
    });
}

/// @param line  the hexadecimal size, and possibly extensions after a semicolon
std::size_t parseChunkSize(const std::string& line) {
    const std::size_t digits = std::min(line.find_first_of("; \t"), line.size());
    std::size_t size = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + digits, size, 16);
    if (error == std::errc::result_out_of_range)
        throw tooLong();
    if (error != std::errc() || end != line.data() + digits)
        throw badRequest("Chunk without a size");
    return size;
}

} // namespace

const Poco::Net::HTTPRequest& RequestReader::readHead() {
    const std::string text = takeHead();
    if (!isWellFormed(text))
        throw badRequest("Not an HTTP request");
    try {
        std::istringstream stream(text);
        head.read(stream);
    } catch (const Poco::Exception&) {
        throw badRequest("Not an HTTP request");
    }
    if (head.getVersion() != head.HTTP_1_0 && head.getVersion() != head.HTTP_1_1)
        throw badRequest("Neither HTTP/1.0 nor HTTP/1.1");
    return head;
}

/// Counts empty lines before the head as part of it, so that their number is limited, too.
std::string RequestReader::takeHead() {
    for (;;) {
        const std::size_t start = startOfHead(received);
        if (const std::size_t end = endOfHead(received, start))
            return take(end).substr(start);
        if (received.size() > maxHeadSize)
            throw badRequest("Head of the request is too long");
        if (!received.empty())
            receiveMore();
        else if (!socket.receiveFirst(received))
            throw ConnectionLost("No request");
    }
}

/// Receives more of a request whose first bytes have arrived.
void RequestReader::receiveMore() {
    received.erase(0, taken); // not in take(), because erasing after each tiny chunk would be slow
    taken = 0;
    try {
        if (!socket.receive(received))
            throw badRequest("Request ends too early");
    } catch (const ClientTimeout& timeout) {
        throw HttpError(HTTPResponse::HTTP_REQUEST_TIMEOUT, timeout.what());
    }
}

std::string RequestReader::readBody() {
    const auto lengths = countHeaders(head, "Content-Length");
    const auto encodings = countHeaders(head, "Transfer-Encoding");
    if (lengths + encodings > 1)
        throw badRequest("Length of the body is told twice");
    if (lengths == 1)
        return readFixedLength(head.get("Content-Length"));
    if (encodings == 0)
        return {};
    if (Poco::icompare(head.get("Transfer-Encoding"), "chunked") != 0)
        throw badRequest("Transfer encoding is not chunked");
    return readChunks();
}

void RequestReader::sendContinueIfExpected() {
    if (head.getExpectContinue() && taken == received.size())
        socket.send("HTTP/1.1 100 Continue\r\n\r\n");
}

std::string RequestReader::readFixedLength(const std::string& length) {
    const bool isNumber = !length.empty() && length.find_first_not_of("0123456789") == length.npos;
    if (!isNumber)
        throw badRequest("Content-Length is no number");
    const auto count = readNumber<std::size_t>(length);
    if (!count || *count > maxRequestSize)
        throw tooLong();
    sendContinueIfExpected();
    return take(*count);
}

std::string RequestReader::readChunks() {
    sendContinueIfExpected();
    std::string body;
    while (const std::size_t size = parseChunkSize(takeLine())) {
        if (size > maxRequestSize - body.size())
            throw tooLong();
        body += take(size);
        if (!takeLine().empty())
            throw badRequest("Chunk is longer than its size");
    }
    skipTrailers();
    return body;
}

void RequestReader::skipTrailers() {
    for (int count = 0; !takeLine().empty(); ++count) {
        if (count == maxTrailers)
            throw badRequest("Too much behind the body");
    }
}

std::string RequestReader::take(std::size_t count) {
    while (received.size() - taken < count)
        receiveMore();
    std::string bytes = received.substr(taken, count);
    taken += count;
    return bytes;
}

/// @return the next line without its line break
std::string RequestReader::takeLine() {
    std::size_t end;
    while ((end = received.find('\n', taken)) == received.npos) {
        if (received.size() - taken > maxChunkLineSize)
            throw badRequest("Line between chunks is too long");
        receiveMore();
    }
    std::string line = take(end + 1 - taken);
    line.pop_back();
    removeCarriageReturn(line);
    return line;
}

} // namespace connector::service
