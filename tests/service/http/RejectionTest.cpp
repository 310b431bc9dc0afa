/// Requests of clients that are not served.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using test::errorOf;
using test::get;
using test::HttpResponse;
using test::ServerProcess;

const char* const allPaths[] = {"/messages", "/options", "/options/a", "/watch?key=a", "/none"};

TEST(Rejection, AForeignHostOrOriginGets403OnEveryPath) {
    const ServerProcess server({}, {"-s", "a=1"});
    for (const char* path : allPaths) {
        SCOPED_TRACE(path);
        EXPECT_EQ(403, get(server.port(), path, {"Host: evil.example"}).status);
        const HttpResponse response = get(server.port(), path, {"Origin: http://evil.example"});
        EXPECT_EQ(403, response.status);
        EXPECT_EQ("Pages of other origins are not served", errorOf(response.body));
    }
    const HttpResponse posted = test::post(server.port(), test::getMessage("a"), {"Origin: null"});
    EXPECT_EQ(403, posted.status);
}

TEST(Rejection, NoResponseHasHeadersThatAdmitOtherOrigins) {
    const ServerProcess server({}, {"-s", "a=1"});
    for (const auto& response :
         {get(server.port(), "/options"), test::post(server.port(), test::getMessage("a")),
          test::request(server.port(), "OPTIONS", "/messages", "",
                        {"Access-Control-Request-Method: POST"}),
          get(server.port(), "/options", {"Origin: http://evil.example"})}) {
        for (const auto& [name, value] : response.headers)
            EXPECT_NE(0u, name.find("access-control-")) << name;
        EXPECT_EQ("nosniff", response.headers.at("x-content-type-options"));
        EXPECT_EQ("no-store", response.headers.at("cache-control"));
    }
}

TEST(Rejection, WithATokenFileRequestsWithoutTheTokenGet401) {
    const test::TemporaryDirectory directory;
    const std::string file = directory.write("token", "s3cret\r\n").string();
    const ServerProcess server({"--token-file", file}, {"-s", "a=1"});
    for (const char* path : allPaths) {
        SCOPED_TRACE(path);
        const HttpResponse response = get(server.port(), path);
        EXPECT_EQ(401, response.status);
        EXPECT_EQ("Bearer", response.headers.at("www-authenticate"));
        EXPECT_EQ("Bearer token is missing or wrong", errorOf(response.body));
    }
    EXPECT_EQ(401, get(server.port(), "/options", {"Authorization: Bearer s3crets"}).status);
    const std::string token = "Authorization: Bearer s3cret";
    EXPECT_EQ(200, get(server.port(), "/options", {token}).status);
    EXPECT_EQ(200, get(server.port(), "/options/a", {token}).status);
    EXPECT_EQ(200, test::post(server.port(), test::getMessage("a"), {token}).status);
    test::HttpClient watcher(server.port());
    watcher.get("/watch?key=a", {token});
    EXPECT_EQ("HTTP/1.1 200 OK", watcher.readLine());
    EXPECT_NE("", watcher.readLineStartingWith("data: "));
}

TEST(Rejection, NamesTheKeyWhateverIsWrong) {
    const ServerProcess server({"--writable", ""}, {"-s", "net.port=1"});
    const struct {
        int line;
        int status;
        const char* method;
        const char* path;
        test::Headers headers;
    } rows[] = {
        {__LINE__, 400, "GET", "/options/net.port?x=1", {}},
        {__LINE__, 406, "GET", "/options/net.port", {"Accept: text/html"}},
        {__LINE__, 415, "PUT", "/options/net.port", {"Content-Type: text/plain"}},
        {__LINE__, 405, "POST", "/options/net.port", {}},
        {__LINE__, 405, "PUT", "/explain/net.port", {}},
        {__LINE__, 403, "GET", "/options/net.port", {"Origin: http://evil.example"}},
        {__LINE__, 400, "GET", "/options/net.port", {"Content-Length: 1", "Content-Length: 1"}},
        {__LINE__, 403, "GET", "/options/net%2Eport", {"Host: evil.example"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const HttpResponse response =
            test::request(server.port(), row.method, row.path, "", row.headers);
        EXPECT_EQ(row.status, response.status);
        EXPECT_NE(std::string::npos, response.body.find(R"("key":"net.port"})")) << response.body;
    }
}

TEST(Rejection, AcceptMayBeSeveralHeaders) {
    const ServerProcess server({}, {"-s", "a=1"});
    const std::string path = "/options/a";
    EXPECT_EQ(200,
              get(server.port(), path, {"Accept: text/html", "Accept: application/json"}).status);
    EXPECT_EQ(406, get(server.port(), path, {"Accept: text/html", "Accept: text/plain"}).status);
}

} // namespace
