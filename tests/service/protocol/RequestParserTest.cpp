/// Requests that arrive in pieces.
#include <connector/service/protocol/RequestParser.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

using connector::service::RequestParser;

TEST(RequestParser, EmptyLinesMayArriveInAnyPieces) {
    const std::string text = "\r\n\r\nGET /a HTTP/1.1\r\nHost: x\r\n\r\n";
    for (std::size_t end = 1; end < text.size(); ++end) {
        SCOPED_TRACE(end);
        RequestParser parser(1024, 1024);
        std::string input = text.substr(0, end);
        EXPECT_FALSE(parser.readHead(input));
        input += text.substr(end);
        EXPECT_TRUE(parser.readHead(input));
        EXPECT_EQ("/a", parser.head().target());
        EXPECT_EQ("", input);
    }
}

} // namespace
