/// Who is let in.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"
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
using test::errorOf;
using test::get;
using test::HttpAnswer;
using test::ServerProcess;

/// @return the status for a request with these headers; 200 for one that is let in
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

TEST(RequestGuard, TheHost_MustBeTheAddressThatWasReached) {
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

TEST(RequestGuard, WithoutOneHost_IsClosed) {
    const RequestGuard guard("127.0.0.1", {});
    EXPECT_EQ(403, statusFor(guard, "127.0.0.1:1", {}));
    EXPECT_EQ(403,
              statusFor(guard, "127.0.0.1:1", {{"Host", "127.0.0.1:1"}, {"HOST", "127.0.0.1:1"}}));
}

TEST(RequestGuard, TheAuthorityOfTheTarget_TakesThePlaceOfTheHost) {
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

TEST(RequestGuard, APageOfAnotherOrigin_IsNotLetIn) {
    const RequestGuard guard("127.0.0.1", {});
    const struct {
        int line;
        const char* header;
        const char* value;
        int status;
    } rows[] = {
        {__LINE__, "Origin", "http://127.0.0.1:1", 200},
        {__LINE__, "Origin", "http://localhost:1", 403}, // another name is another origin
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

TEST(RequestGuard, ATokenThatIsAskedFor_MustBeShown) {
    const RequestGuard guard("127.0.0.1", connector::service::Token("abc"));
    const struct {
        int line;
        const char* shown;
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
        EXPECT_EQ(row.status, statusFor(guard, "127.0.0.1:1",
                                        {{"Host", "127.0.0.1:1"}, {"Authorization", row.shown}}));
    }
    EXPECT_EQ(401, statusFor(guard, "127.0.0.1:1", {{"Host", "127.0.0.1:1"}}));
    EXPECT_EQ(401, statusFor(guard, "127.0.0.1:1",
                             {{"Host", "127.0.0.1:1"},
                              {"Authorization", "Bearer abc"},
                              {"Authorization", "Bearer abc"}}));
}

const char* const everyPath[] = {"/messages", "/options", "/options/a", "/watch?key=a", "/none"};

TEST(LettingIn, AForeignHostOrOrigin_Is403OnEveryPath) {
    const ServerProcess server({}, {"-s", "a=1"});
    for (const char* path : everyPath) {
        SCOPED_TRACE(path);
        EXPECT_EQ(403, get(server.port(), path, {"Host: evil.example"}).status);
        const HttpAnswer answer = get(server.port(), path, {"Origin: http://evil.example"});
        EXPECT_EQ(403, answer.status);
        EXPECT_EQ("Pages of other origins are not served", errorOf(answer.body));
    }
    const HttpAnswer posted = test::post(server.port(), test::getMessage("a"), {"Origin: null"});
    EXPECT_EQ(403, posted.status);
}

TEST(LettingIn, NoAnswer_HasHeadersThatLetPagesIn) {
    const ServerProcess server({}, {"-s", "a=1"});
    for (const auto& answer :
         {get(server.port(), "/options"), test::post(server.port(), test::getMessage("a")),
          test::request(server.port(), "OPTIONS", "/messages", "",
                        {"Access-Control-Request-Method: POST"}),
          get(server.port(), "/options", {"Origin: http://evil.example"})}) {
        for (const auto& [name, value] : answer.headers)
            EXPECT_NE(0u, name.find("access-control-")) << name;
        EXPECT_EQ("nosniff", answer.headers.at("x-content-type-options"));
        EXPECT_EQ("no-store", answer.headers.at("cache-control"));
    }
}

TEST(LettingIn, WithATokenFile_IsForThoseWhoShowTheToken) {
    const test::TemporaryDirectory directory;
    const std::string file = directory.write("token", "s3cret\r\n").string();
    const ServerProcess server({"--token-file", file}, {"-s", "a=1"});
    for (const char* path : everyPath) {
        SCOPED_TRACE(path);
        const HttpAnswer answer = get(server.port(), path);
        EXPECT_EQ(401, answer.status);
        EXPECT_EQ("Bearer", answer.headers.at("www-authenticate"));
        EXPECT_EQ("Bearer token is missing or wrong", errorOf(answer.body));
    }
    EXPECT_EQ(401, get(server.port(), "/options", {"Authorization: Bearer s3crets"}).status);
    const std::string token = "Authorization: Bearer s3cret";
    EXPECT_EQ(200, get(server.port(), "/options", {token}).status);
    EXPECT_EQ(200, get(server.port(), "/options/a", {token}).status);
    EXPECT_EQ(200, test::post(server.port(), test::getMessage("a"), {token}).status);
    test::HttpClient watcher(server.port());
    watcher.get("/watch?key=a", {token});
    EXPECT_EQ("HTTP/1.1 200 OK", watcher.readLine());
    EXPECT_NE("", watcher.readLineBeginning("data: "));
}

} // namespace
