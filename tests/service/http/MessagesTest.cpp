/// POST /messages
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

namespace {

using test::errorOf;
using test::get;
using test::getMessage;
using test::HttpResponse;
using test::post;
using test::request;
using test::ServerProcess;
using test::setMessage;

TEST(PostMessages, RespondsToARequestWithStatus200) {
    const ServerProcess server({}, {"-s", "net.port:int=80"});
    const HttpResponse response = post(
        server.port(),
        R"({"id":[1],"type":"connector/configuration/ConfigurationGet","message":{"key":"net.port"}})");
    EXPECT_EQ(200, response.status);
    EXPECT_EQ("application/json", response.headers.at("content-type"));
    EXPECT_EQ(
        R"({"id":[1],"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"net.port","source":"override","value":{"type":"int","value":80}}})"
        "\n",
        response.body);
}

TEST(PostMessages, ReportsAnInvalidMessageWithStatus400) {
    const ServerProcess server;
    const struct {
        int line;
        const char* body;
        const char* text;
    } rows[] = {
        {__LINE__, "", "A request is a JSON object"},
        {__LINE__, "   ", "A request is a JSON object"},
        {__LINE__, "[]", "A request is a JSON object"},
        {__LINE__, "{\"a\":\"\xff\"}", "Text is not valid UTF-8"},
        {__LINE__, "{}", "Unknown message type: "},
        {__LINE__, R"({"type":"a/B","message":{}})", "Unknown message type: a/B"},
        {__LINE__, R"({"type":"connector/Message"})", "Message without content: connector/Message"},
        {__LINE__, R"({"type":"connector/Message","message":{}})",
         "Incorrect message type. Expected: "
         "N9connector14ServiceMessageINS_13configuration28ConfigurationServiceProviderEEE but "
         "found "
         "N9connector7MessageE"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const HttpResponse response = post(server.port(), row.body);
        EXPECT_EQ(400, response.status);
        EXPECT_EQ(row.text, errorOf(response.body));
    }
}

TEST(PostMessages, KeepsTheIdInAFailure) {
    const ServerProcess server;
    EXPECT_EQ(R"({"id":7,"error":{"type":"std::invalid_argument","text":"Unknown message type: "},)"
              R"("type":"about:blank","title":"Bad Request","status":400,)"
              R"("detail":"Unknown message type: "})"
              "\n",
              post(server.port(), R"({"id":7})").body);
}

TEST(PostMessages, ReportsAFailureOfTheConfigurationWithStatus422) {
    const ServerProcess server({"--writable", ""});
    const HttpResponse response = post(
        server.port(),
        R"({"type":"connector/configuration/ConfigurationSet","message":{"key":"k","source":"nobody"}})");
    EXPECT_EQ(422, response.status);
    EXPECT_EQ(
        R"({"error":{"type":"std::runtime_error","text":"Source not found or not writable: k, nobody"},)"
        R"("type":"about:blank","title":"Unprocessable Entity","status":422,)"
        R"("detail":"Source not found or not writable: k, nobody","key":"k"})"
        "\n",
        response.body);
}

TEST(PostMessages, RespondsWithStatus200IfTheOptionIsMissing) {
    const ServerProcess server;
    const HttpResponse response = post(server.port(), getMessage("none"));
    EXPECT_EQ(200, response.status);
    EXPECT_EQ(R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{}})"
              "\n",
              response.body);
}

TEST(PostMessages, DoesNotMaskSecretsInTheReplyToAGet) {
    const ServerProcess server({}, {"-s", "password=x"});
    EXPECT_NE(std::string::npos,
              post(server.port(), getMessage("password")).body.find(R"("value":"x")"));
}

TEST(Paths, UnknownOnesGet404) {
    const ServerProcess server;
    for (const char* path : {"/", "/message", "/messages/", "/Options", "/optionsx", "//options",
                             "/watch/", "*", "/../options"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(404, request(server.port(), "GET", path).status);
    }
}

TEST(Paths, MeanTheSameInTheAbsoluteForm) {
    const ServerProcess server({}, {"-s", "a=1"});
    const std::string root = "http://127.0.0.1:" + std::to_string(server.port());
    const auto withRoot = [&](const std::string& path) {
        return get(server.port(), root + path, {"Host: elsewhere.example"});
    };
    EXPECT_EQ(get(server.port(), "/options").body, withRoot("/options").body);
    EXPECT_EQ(get(server.port(), "/options/a").body, withRoot("/options/a").body);
    EXPECT_EQ(400, withRoot("/watch?x=a").status);
    EXPECT_EQ(404, withRoot("").status);
    EXPECT_EQ(404, withRoot("?key=a").status);
    EXPECT_EQ(403, get(server.port(), "http://elsewhere.example/options").status);
    EXPECT_EQ(200, request(server.port(), "POST", root + "/messages", getMessage("a")).status);
}

TEST(Methods, OthersThanThePathAllowsGet405AndAnAllowHeader) {
    const ServerProcess server;
    const struct {
        int line;
        const char* method;
        const char* path;
        const char* allow;
    } rows[] = {
        {__LINE__, "GET", "/messages", "POST"},
        {__LINE__, "PUT", "/messages", "POST"},
        {__LINE__, "OPTIONS", "/messages", "POST"},
        {__LINE__, "POST", "/options", "GET, HEAD"},
        {__LINE__, "DELETE", "/options", "GET, HEAD"},
        {__LINE__, "POST", "/options/a", "GET, HEAD, PUT, DELETE"},
        {__LINE__, "POST", "/watch?key=a", "GET, HEAD"},
        {__LINE__, "get", "/options", "GET, HEAD"},
        {__LINE__, "NONSENSE", "/options", "GET, HEAD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const HttpResponse response = request(server.port(), row.method, row.path);
        EXPECT_EQ(405, response.status);
        EXPECT_EQ(row.allow, response.headers.at("allow"));
        EXPECT_EQ(std::string("Method must be one of these: ") + row.allow, errorOf(response.body));
    }
}

TEST(Methods, HeadIsGetWithoutABody) {
    const ServerProcess server({}, {"-s", "a=1"});
    for (const char* path : {"/options", "/options/a", "/options/none", "/none", "/healthz"}) {
        SCOPED_TRACE(path);
        const HttpResponse whole = get(server.port(), path);
        const HttpResponse head = request(server.port(), "HEAD", path);
        EXPECT_EQ(whole.status, head.status);
        EXPECT_EQ(whole.headers.at("content-length"), head.headers.at("content-length"));
        EXPECT_EQ("", head.body);
    }
    EXPECT_EQ(403, request(server.port(), "HEAD", "/options", "", {"Host: e.example"}).status);
    EXPECT_EQ(405, request(server.port(), "HEAD", "/messages").status);
}

} // namespace
