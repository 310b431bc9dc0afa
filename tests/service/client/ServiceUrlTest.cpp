/// The URLs of services.
#include <connector/service/client/ServiceUrl.hpp>

#include <gtest/gtest.h>

namespace {

using connector::service::parseServiceUrl;

TEST(ServiceUrl, NamesHostAndPort) {
    const struct {
        int line;
        const char* text;
        bool isTls;
        const char* host;
        const char* port;
        const char* authority;
    } rows[] = {
        {__LINE__, "http://localhost:8080", false, "localhost", "8080", "localhost:8080"},
        {__LINE__, "https://a.example/", true, "a.example", "443", "a.example"},
        {__LINE__, "http://127.0.0.1", false, "127.0.0.1", "80", "127.0.0.1"},
        {__LINE__, "https://[::1]:8443", true, "::1", "8443", "[::1]:8443"},
        {__LINE__, "http://[::1]", false, "::1", "80", "[::1]"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const auto url = parseServiceUrl(row.text);
        ASSERT_TRUE(url);
        EXPECT_EQ(row.text, url->text);
        EXPECT_EQ(row.isTls, url->isTls);
        EXPECT_EQ(row.host, url->host);
        EXPECT_EQ(row.port, url->port);
        EXPECT_EQ(row.authority, url->authority);
        EXPECT_FALSE(url->isUnix());
    }
}

TEST(ServiceUrl, NamesUnixSocket) {
    const auto url = parseServiceUrl("unix:run/a b.sock");
    ASSERT_TRUE(url);
    EXPECT_TRUE(url->isUnix());
    EXPECT_EQ("run/a b.sock", url->path);
    EXPECT_EQ("localhost", url->authority);
}

TEST(ServiceUrl, HasNothingElse) {
    for (const std::string text :
         {"",           "localhost:80",     "ftp://a",        "http:/a",     "http://",
          "http://:80", "http:///",         "http://a/b",     "http://a?b",  "http://a#b",
          "http://u@a", "http://a:0",       "http://a:65536", "http://a:",   "http://a:x",
          "http://a b", "http://a\r\nX: y", "http://::1",     "http://[::1", "http://[x]",
          "unix:"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(parseServiceUrl(text));
    }
    EXPECT_FALSE(parseServiceUrl("unix:" + std::string(200, 'x')));
}

} // namespace
