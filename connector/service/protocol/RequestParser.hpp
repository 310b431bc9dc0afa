/// The bytes of a connection, as requests.
///
/// Boost.Beast parses the head and the chunks. What its parser of Boost 1.74 lets pass is refused
/// before: a line folded into the next one, control characters, encoded words, a body whose end two
/// readers could see at two places. Tests keep the requests that show it, for any later Boost.
#pragma once

#include <connector/service/protocol/HttpError.hpp>

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace connector::service {

using RequestHead = boost::beast::http::request_header<>;

/// Parses one request. Not thread-safe.
class RequestParser {
public:
    /// @param newHeadSize  in bytes
    /// @param newBodySize  in bytes
    RequestParser(std::size_t newHeadSize, std::size_t newBodySize);

    /// Takes the head, and empty lines before it, from the front of the input.
    /// @return whether the head is complete
    /// @throws HttpError  status 400, 413 or 431
    bool readHead(std::string& input);

    /// @return the head, without trailers of the body; empty until it has arrived, and
    ///         only its beginning if it was refused
    const RequestHead& head() const { return completeHead; }

    /// REQUIRES: readHead returned true
    bool keepsAlive() const { return parser.keep_alive(); }

    /// @return whether the client sends the body only when it is told to; REQUIRES: as above
    bool expectsContinue() const;

    /// REQUIRES: readHead returned true
    bool hasBody() const { return isChunked || length > 0; }

    /// Takes the body from the front of the input.
    /// @return whether the body is complete
    /// @throws HttpError  status 400 or 413
    bool readBody(std::string& input);

    /// REQUIRES: readBody returned true
    std::string takeBody() { return std::move(body); }

private:
    void skipEmptyLines(std::string& input);
    void checkHead(std::string_view text);
    void parseHead(std::string_view text);
    void decideBody();
    bool readLength(std::string& input);
    bool readChunks(std::string& input);

    const std::size_t headSize;
    const std::size_t bodySize;
    std::size_t skipped = 0;    // bytes of empty lines before the head
    std::size_t checked = 0;    // bytes of the head that checkHead has seen
    bool isInHeaders = false;   // whether they end behind the first line
    std::size_t extensions = 0; // bytes of those of all chunks so far
    std::function<void(std::uint64_t, boost::beast::string_view, boost::beast::error_code&)>
        limitExtensions; // the parser refers to it
    boost::beast::http::request_parser<boost::beast::http::string_body> parser;
    RequestHead completeHead;
    bool isChunked = false;
    std::size_t length = 0; // of a body that is not chunked, in bytes
    std::string body;
};

/// @return whether the text is the first byte of an empty line, whose rest may follow
inline bool isBeginningOfEmptyLine(std::string_view text) {
    return text == "\r";
}

/// @return the only value of a header; empty if there is none
/// @throws HttpError  status 400 if there are several
std::string_view onlyValue(const RequestHead& head, std::string_view name);

} // namespace connector::service
