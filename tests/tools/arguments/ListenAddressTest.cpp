#include "arguments/ListenAddress.hpp"

#include "support/Expect.hpp"
#include "values/WrongArguments.hpp"

#include <gtest/gtest.h>

namespace {

using connector_config::ListenAddress;
using connector_config::parseListenAddress;
using connector_config::WrongArguments;

TEST(ListenAddress, AcceptsHostAndPort) {
    const struct {
        int line;
        const char* text;
        const char* host;
        int port;
    } rows[] = {
        {__LINE__, "127.0.0.1:8080", "127.0.0.1", 8080}, {__LINE__, "localhost:0", "localhost", 0},
        {__LINE__, "0.0.0.0:65535", "0.0.0.0", 65535},   {__LINE__, "[::1]:80", "::1", 80},
        {__LINE__, ":8080", "127.0.0.1", 8080}, // loopback by default
        {__LINE__, "8080", "127.0.0.1", 8080},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const ListenAddress address = parseListenAddress(row.text);
        EXPECT_EQ(row.host, address.host);
        EXPECT_EQ(row.port, address.port);
    }
}

TEST(ListenAddress, RejectsOtherForms) {
    for (const std::string text : {"", ":", "host", "host:", "host:x", "host:65536", "host:-1",
                                   "host:80 ", "::1:80", "[::1]", "[::1:80", "::1]:80", "[]:80"})
        test::expectThrows<WrongArguments>("Not of the form HOST:PORT or unix:PATH: " + text,
                                           [&text] { parseListenAddress(text); });
}

} // namespace
