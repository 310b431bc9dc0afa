#include <connector/service/http/RequestReader.hpp>

#include <connector/service/http/Response.hpp>
#include <connector/service/messages/RequestText.hpp>
#include <connector/service/text/Number.hpp>

#include <Poco/Exception.h>
#include <Poco/String.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <sstream>

namespace connector::service {

namespace {

constexpr std::size_t longestHead = 32 * 1024;
constexpr std::size_t longestLine = 4096; // of what stands between chunks
constexpr int mostTrailers = 100;

HttpFailure badRequest(const std::string& text) {
    return HttpFailure(HTTPResponse::HTTP_BAD_REQUEST, text);
}

HttpFailure tooLong() {
    return HttpFailure(HTTPResponse::HTTP_REQUEST_ENTITY_TOO_LARGE,
                       "A request is at most 1 MiB long");
}

/// @return where the head begins, behind any empty lines
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

/// @return where the head ends, its empty line included; 0 if that has not come yet
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

bool isControl(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return (code < ' ' && byte != '\t') || code == 0x7f;
}

bool isHeader(const std::string& line) {
    const std::size_t nameEnd = line.find_first_of(": \t");
    return nameEnd != line.npos && nameEnd > 0 && line[nameEnd] == ':';
}

/// Poco skips blanks in front, takes lines without a colon for a part of others or for nothing, and
/// leaves any bytes in what it reads. Nobody who means well sends that.
bool isWellFormed(const std::string& head) {
    std::istringstream text(head);
    bool isFirst = true;
    for (std::string line; std::getline(text, line); isFirst = false) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty())
            return true; // the end
        const bool hasForm = isFirst ? line.front() != ' ' && line.front() != '\t' : isHeader(line);
        if (!hasForm || std::any_of(line.begin(), line.end(), isControl))
            return false;
    }
    return true;
}

auto countOf(const Poco::Net::HTTPRequest& head, const std::string& name) {
    return std::count_if(head.begin(), head.end(), [&name](const auto& header) {
        return Poco::icompare(header.first, name) == 0;
    });
}

/// A chunk's line is its size, hexadecimal, and possibly extensions behind a semicolon.
std::size_t sizeOfChunk(const std::string& line) {
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

/// Empty lines in front of it count as parts of it, so that there cannot be too many.
std::string RequestReader::takeHead() {
    for (;;) {
        const std::size_t start = startOfHead(unread);
        if (const std::size_t end = endOfHead(unread, start))
            return take(end).substr(start);
        if (unread.size() > longestHead)
            throw badRequest("Head of the request is too long");
        if (!unread.empty())
            receive();
        else if (!wire.receiveFirst(unread))
            throw ClientLost("No request");
    }
}

/// More of a request that has begun.
void RequestReader::receive() {
    unread.erase(0, taken); // here and not where it is taken, for chunks may be tiny
    taken = 0;
    try {
        if (!wire.receive(unread))
            throw badRequest("Request ends too early");
    } catch (const ClientLate& late) {
        throw HttpFailure(HTTPResponse::HTTP_REQUEST_TIMEOUT, late.what());
    }
}

std::string RequestReader::readBody() {
    const auto lengths = countOf(head, "Content-Length");
    const auto encodings = countOf(head, "Transfer-Encoding");
    if (lengths + encodings > 1)
        throw badRequest("Length of the body is told twice");
    if (lengths == 1)
        return readLength(head.get("Content-Length"));
    if (encodings == 0)
        return {};
    if (Poco::icompare(head.get("Transfer-Encoding"), "chunked") != 0)
        throw badRequest("Transfer encoding is not chunked");
    return readChunks();
}

/// A client may wait for a word before it sends.
void RequestReader::askForBody() {
    if (head.getExpectContinue() && taken == unread.size())
        wire.send("HTTP/1.1 100 Continue\r\n\r\n");
}

std::string RequestReader::readLength(const std::string& length) {
    const bool isNumber = !length.empty() && length.find_first_not_of("0123456789") == length.npos;
    if (!isNumber)
        throw badRequest("Content-Length is no number");
    const auto count = readNumber<std::size_t>(length);
    if (!count || *count > longestRequest)
        throw tooLong();
    askForBody();
    return take(*count);
}

std::string RequestReader::readChunks() {
    askForBody();
    std::string body;
    while (const std::size_t size = sizeOfChunk(takeLine())) {
        if (size > longestRequest - body.size())
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
        if (count == mostTrailers)
            throw badRequest("Too much behind the body");
    }
}

std::string RequestReader::take(std::size_t count) {
    while (unread.size() - taken < count)
        receive();
    std::string bytes = unread.substr(taken, count);
    taken += count;
    return bytes;
}

std::string RequestReader::takeLine() {
    std::size_t end;
    while ((end = unread.find('\n', taken)) == unread.npos) {
        if (unread.size() - taken > longestLine)
            throw badRequest("Line between chunks is too long");
        receive();
    }
    std::string line = take(end + 1 - taken);
    line.pop_back();
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

} // namespace connector::service
