/// Which clients are served.
#include <connector/service/access/RequestGuard.hpp>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using connector::service::Peer;
using connector::service::Rejection;
using connector::service::RequestGuard;
using connector::service::RequestHead;

/// @param reached  as in "127.0.0.1:80" or "[::1]:80"
Peer peerAt(const std::string& reached) {
    const std::size_t colon = reached.rfind(':');
    std::string host = reached.substr(0, colon);
    if (host.front() == '[')
        host = host.substr(1, host.size() - 2);
    Peer peer;
    peer.local = boost::asio::ip::make_address(host);
    peer.localPort = static_cast<std::uint16_t>(std::stoi(reached.substr(colon + 1)));
    return peer;
}

/// @return the HTTP status for a request with these headers
int statusFor(const RequestGuard& guard, const Peer& peer,
              const std::vector<std::pair<std::string, std::string>>& headers,
              const std::string& target = "/", bool isPublic = false) {
    RequestHead request;
    request.target(target);
    for (const auto& [name, value] : headers)
        request.insert(name, value);
    const auto rejection = guard.check(request, peer, isPublic);
    if (!rejection)
        return 200;
    return rejection->reason == Rejection::Reason::Unauthenticated ? 401 : 403;
}

int statusFor(const RequestGuard& guard, const std::string& reached,
              const std::vector<std::pair<std::string, std::string>>& headers,
              const std::string& target = "/", bool isPublic = false) {
    return statusFor(guard, peerAt(reached), headers, target, isPublic);
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
                  statusFor(RequestGuard({row.given}, {}, {}), row.reached, {{"Host", row.host}}));
    }
}

TEST(RequestGuard, RequiresExactlyOneHost) {
    const RequestGuard guard({"127.0.0.1"}, {}, {});
    EXPECT_EQ(403, statusFor(guard, "127.0.0.1:1", {}));
    EXPECT_EQ(403,
              statusFor(guard, "127.0.0.1:1", {{"Host", "127.0.0.1:1"}, {"HOST", "127.0.0.1:1"}}));
}

TEST(RequestGuard, TheAuthorityOfTheTargetReplacesTheHost) {
    const RequestGuard guard({"127.0.0.1"}, {}, {});
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
    const RequestGuard guard({"127.0.0.1"}, {}, {});
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
    const RequestGuard guard({"127.0.0.1"}, {}, connector::service::Token("abc"));
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
    EXPECT_EQ(200, statusFor(guard, "127.0.0.1:1", {{"Host", "127.0.0.1:1"}}, "/", true));
}

TEST(RequestGuard, AcceptsAllowedHostsWithAnyPort) {
    const RequestGuard guard({"127.0.0.1"}, {"box.example", "2001:db8::1"}, {});
    for (const char* host :
         {"box.example", "BOX.example:1", "box.example:8443", "[2001:db8::1]:80", "127.0.0.1:1"}) {
        SCOPED_TRACE(host);
        EXPECT_EQ(200, statusFor(guard, "127.0.0.1:1", {{"Host", host}}));
    }
    for (const char* host : {"box.example:", "box.example:x", "a.box.example", "box.example.org"}) {
        SCOPED_TRACE(host);
        EXPECT_EQ(403, statusFor(guard, "127.0.0.1:1", {{"Host", host}}));
    }
}

TEST(RequestGuard, AcceptsPagesOfAllowedHostsByBothSchemes) {
    const RequestGuard guard({"127.0.0.1"}, {"box.example"}, {});
    const auto statusOf = [&](const std::string& origin) {
        return statusFor(guard, "127.0.0.1:1", {{"Host", "box.example"}, {"Origin", origin}});
    };
    EXPECT_EQ(200, statusOf("http://box.example"));
    EXPECT_EQ(200, statusOf("https://box.example"));
    EXPECT_EQ(200, statusOf("https://box.example:8443"));
    EXPECT_EQ(403, statusOf("ftp://box.example"));
    EXPECT_EQ(403, statusOf("https://box.example/path"));
    EXPECT_EQ(403, statusOf("https://evil.example"));
}

TEST(RequestGuard, OverTlsTheOriginAndTheTargetHaveTheSecureScheme) {
    const RequestGuard guard({"127.0.0.1"}, {}, {});
    Peer peer = peerAt("127.0.0.1:443");
    peer.isTls = true;
    const std::pair<std::string, std::string> host{"Host", "127.0.0.1"};
    EXPECT_EQ(200, statusFor(guard, peer, {host}));
    EXPECT_EQ(200, statusFor(guard, peer, {host, {"Origin", "https://127.0.0.1"}}));
    EXPECT_EQ(403, statusFor(guard, peer, {host, {"Origin", "http://127.0.0.1"}}));
    EXPECT_EQ(200, statusFor(guard, peer, {host}, "https://127.0.0.1/options"));
    EXPECT_EQ(403, statusFor(guard, peer, {host}, "http://127.0.0.1/options"));
}

TEST(RequestGuard, OnAUnixSocketTheHostIsLocalhost) {
    const RequestGuard guard({"127.0.0.1"}, {}, {});
    Peer peer;
    peer.isUnix = true;
    EXPECT_EQ(200, statusFor(guard, peer, {{"Host", "localhost"}}));
    EXPECT_EQ(403, statusFor(guard, peer, {{"Host", "127.0.0.1"}}));
    EXPECT_EQ(403, statusFor(guard, peer, {{"Host", "localhost:80"}}));
}

} // namespace
