/// Which clients are served.
#include <connector/service/access/RequestGuard.hpp>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using connector::service::Rejection;
using connector::service::RequestGuard;
using Poco::Net::HTTPRequest;
using Poco::Net::SocketAddress;

/// @return the HTTP status for a request with these headers
int statusFor(const RequestGuard& guard, const std::string& reached,
              const std::vector<std::pair<std::string, std::string>>& headers,
              const std::string& target = "/") {
    HTTPRequest request;
    request.setURI(target);
    for (const auto& [name, value] : headers)
        request.add(name, value);
    const auto rejection = guard.check(request, SocketAddress(reached));
    if (!rejection)
        return 200;
    return rejection->reason == Rejection::Reason::Unauthenticated ? 401 : 403;
}

TEST(RequestGuard, RequiresTheHostToBeTheLocalAddress) {
    const struct {
        int line;
        const char* given;
        const char* reached;
        const char* host;
        int status;
    } rows[] = {
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "127.0.0.1:8080", 200},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "localhost:8080", 200},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "LocalHost:8080", 200},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "127.0.0.1", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "127.0.0.1:80", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "127.0.0.1:08080", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "127.0.0.1:8080.", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "evil.example:8080", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "localhost.evil.example:8080", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "127.0.0.1.evil.example:8080", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "127.0.0.2:8080", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "0.0.0.0:8080", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "[::1]:8080", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "user@127.0.0.1:8080", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:8080", "", 403},
        {__LINE__, "127.0.0.1", "127.0.0.1:80", "127.0.0.1", 200},
        {__LINE__, "::1", "[::1]:8080", "[::1]:8080", 200},
        {__LINE__, "::1", "[::1]:8080", "localhost:8080", 200},
        {__LINE__, "0.0.0.0", "192.0.2.1:8080", "192.0.2.1:8080", 200},
        {__LINE__, "0.0.0.0", "192.0.2.1:8080", "localhost:8080", 403},
        {__LINE__, "0.0.0.0", "192.0.2.1:8080", "box.example:8080", 403},
        {__LINE__, "box.example", "192.0.2.1:8080", "box.example:8080", 200},
        {__LINE__, "box.example", "192.0.2.1:8080", "BOX.example:8080", 200},
        {__LINE__, "::", "[::ffff:127.0.0.1]:8080", "127.0.0.1:8080", 200},
        {__LINE__, "::", "[::ffff:127.0.0.1]:8080", "localhost:8080", 200},
        {__LINE__, "::", "[::ffff:127.0.0.1]:8080", "[::1]:8080", 403},
        {__LINE__, "::", "[::ffff:192.0.2.1]:8080", "192.0.2.1:8080", 200},
        {__LINE__, "::", "[::ffff:192.0.2.1]:8080", "localhost:8080", 403},
        {__LINE__, "::", "[::ffff:192.0.2.1]:80", "192.0.2.1", 200},
        {__LINE__, "::", "[2001:db8::1]:8080", "[2001:db8::1]:8080", 200},
        {__LINE__, "::", "[2001:db8::1]:8080", "localhost:8080", 403},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.status,
                  statusFor(RequestGuard(row.given, {}), row.reached, {{"Host", row.host}}));
    }
}

TEST(RequestGuard, RequiresExactlyOneHost) {
    const RequestGuard guard("127.0.0.1", {});
    EXPECT_EQ(403, statusFor(guard, "127.0.0.1:1", {}));
    EXPECT_EQ(403,
              statusFor(guard, "127.0.0.1:1", {{"Host", "127.0.0.1:1"}, {"HOST", "127.0.0.1:1"}}));
}

TEST(RequestGuard, TheAuthorityOfTheTargetReplacesTheHost) {
    const RequestGuard guard("127.0.0.1", {});
    const struct {
        int line;
        const char* target;
        const char* host;
        int status;
    } rows[] = {
        {__LINE__, "http://127.0.0.1:1/options", "127.0.0.1:1", 200},
        {__LINE__, "HTTP://LocalHost:1/options", "evil.example", 200},
        {__LINE__, "http://127.0.0.1:1", "evil.example", 200},
        {__LINE__, "http://127.0.0.1:1?a", "evil.example", 200},
        {__LINE__, "http://evil.example/options", "127.0.0.1:1", 403},
        {__LINE__, "http://evil.example?@127.0.0.1:1/", "127.0.0.1:1", 403},
        {__LINE__, "http://user@127.0.0.1:1/options", "127.0.0.1:1", 403},
        {__LINE__, "http:///options", "127.0.0.1:1", 403},
        {__LINE__, "/http://127.0.0.1:1/", "evil.example", 403},
        {__LINE__, "https://127.0.0.1:1/", "evil.example", 403},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.status, statusFor(guard, "127.0.0.1:1", {{"Host", row.host}}, row.target));
    }
    EXPECT_EQ(200, statusFor(guard, "127.0.0.1:1", {}, "http://127.0.0.1:1/"));
}

TEST(RequestGuard, RejectsPagesOfOtherOrigins) {
    const RequestGuard guard("127.0.0.1", {});
    const struct {
        int line;
        const char* header;
        const char* value;
        int status;
    } rows[] = {
        {__LINE__, "Origin", "http://127.0.0.1:1", 200},
        {__LINE__, "Origin", "http://localhost:1",
         403}, // another name of the server is another origin
        {__LINE__, "Origin", "https://127.0.0.1:1", 403},
        {__LINE__, "Origin", "http://127.0.0.1", 403},
        {__LINE__, "Origin", "http://127.0.0.1:2", 403},
        {__LINE__, "Origin", "http://127.0.0.1:1.evil.example", 403},
        {__LINE__, "Origin", "http://evil.example", 403},
        {__LINE__, "Origin", "null", 403},
        {__LINE__, "Origin", "", 403},
        {__LINE__, "Sec-Fetch-Site", "cross-site", 403},
        {__LINE__, "Sec-Fetch-Site", "same-site", 403},
        {__LINE__, "Sec-Fetch-Site", "same-origin", 200},
        {__LINE__, "Sec-Fetch-Site", "none", 200},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.status, statusFor(guard, "127.0.0.1:1",
                                        {{"Host", "127.0.0.1:1"}, {row.header, row.value}}));
    }
    EXPECT_EQ(403, statusFor(guard, "127.0.0.1:1",
                             {{"Host", "127.0.0.1:1"},
                              {"Origin", "http://127.0.0.1:1"},
                              {"Origin", "http://evil.example"}}));
}

TEST(RequestGuard, RequiresTheToken) {
    const RequestGuard guard("127.0.0.1", connector::service::Token("abc"));
    const struct {
        int line;
        const char* authorization;
        int status;
    } rows[] = {
        {__LINE__, "Bearer abc", 200},
        {__LINE__, "bearer abc", 200},
        {__LINE__, "Bearer abcd", 401},
        {__LINE__, "Bearer ab", 401},
        {__LINE__, "Bearer ABC", 401},
        {__LINE__, "Bearer  abc", 401},
        {__LINE__, "Bearer", 401},
        {__LINE__, "Bearer ", 401},
        {__LINE__, "abc", 401},
        {__LINE__, "Basic abc", 401},
        {__LINE__, "", 401},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.status,
                  statusFor(guard, "127.0.0.1:1",
                            {{"Host", "127.0.0.1:1"}, {"Authorization", row.authorization}}));
    }
    EXPECT_EQ(401, statusFor(guard, "127.0.0.1:1", {{"Host", "127.0.0.1:1"}}));
    EXPECT_EQ(401, statusFor(guard, "127.0.0.1:1",
                             {{"Host", "127.0.0.1:1"},
                              {"Authorization", "Bearer abc"},
                              {"Authorization", "Bearer abc"}}));
}

} // namespace
