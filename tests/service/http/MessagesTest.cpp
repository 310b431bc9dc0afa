/// POST /messages
#include "service/support/HttpClient.hpp"
#include "service/support/ServerInside.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

namespace {

using test::errorOf;
using test::get;
using test::getMessage;
using test::HttpAnswer;
using test::post;
using test::request;
using test::ServerInside;
using test::ServerProcess;
using test::setMessage;

TEST(PostMessages, ARequest_IsAnsweredWith200) {
    const ServerProcess server({}, {"-s", "net.port:int=80"});
    const HttpAnswer answer = post(
        server.port(),
        R"({"id":[1],"type":"connector/configuration/ConfigurationGet","message":{"key":"net.port"}})");
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ("application/json", answer.headers.at("content-type"));
    EXPECT_EQ(
        R"({"id":[1],"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"net.port","source":"override","value":{"type":"int","value":80}}})"
        "\n",
        answer.body);
}

TEST(PostMessages, WhatIsNoMessage_Is400) {
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
        const HttpAnswer answer = post(server.port(), row.body);
        EXPECT_EQ(400, answer.status);
        EXPECT_EQ(row.text, errorOf(answer.body));
    }
}

TEST(PostMessages, AFailure_KeepsTheId) {
    const ServerProcess server;
    EXPECT_EQ(R"({"id":7,"error":{"type":"std::invalid_argument","text":"Unknown message type: "}})"
              "\n",
              post(server.port(), R"({"id":7})").body);
}

TEST(PostMessages, AFailureOfTheConfiguration_Is422) {
    const ServerProcess server({"--writable", ""});
    const HttpAnswer answer = post(
        server.port(),
        R"({"type":"connector/configuration/ConfigurationSet","message":{"key":"k","source":"nobody"}})");
    EXPECT_EQ(422, answer.status);
    EXPECT_EQ(
        R"({"error":{"type":"std::runtime_error","text":"Source not found or not writable: k, nobody"}})"
        "\n",
        answer.body);
}

TEST(PostMessages, ToAStoppedService_Is503) {
    ServerInside server;
    server.stopService();
    const HttpAnswer answer = post(server.port(), getMessage("a"));
    EXPECT_EQ(503, answer.status);
    EXPECT_EQ("Service exists but is not running.", errorOf(answer.body));
}

TEST(PostMessages, AnAbsentOption_Is200) {
    const ServerProcess server;
    const HttpAnswer answer = post(server.port(), getMessage("none"));
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ(R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{}})"
              "\n",
              answer.body);
}

TEST(PostMessages, ASecret_IsHandedOutRaw) {
    const ServerProcess server({}, {"-s", "password=x"});
    EXPECT_NE(std::string::npos,
              post(server.port(), getMessage("password")).body.find(R"("value":"x")"));
}

TEST(Paths, ThatAreUnknown_Are404) {
    const ServerProcess server;
    for (const char* path : {"/", "/message", "/messages/", "/Options", "/optionsx", "//options",
                             "/watch/", "https://127.0.0.1/options", "*", "/../options"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(404, request(server.port(), "GET", path).status);
    }
}

TEST(Paths, InTheAbsoluteForm_AreTheSame) {
    const ServerProcess server({}, {"-s", "a=1"});
    const std::string root = "http://127.0.0.1:" + std::to_string(server.port());
    const auto withRoot = [&](const std::string& path) {
        return get(server.port(), root + path, {"Host: elsewhere.example"});
    };
    EXPECT_EQ(get(server.port(), "/options").body, withRoot("/options").body);
    EXPECT_EQ(get(server.port(), "/options/a").body, withRoot("/options/a").body);
    EXPECT_EQ(400, withRoot("/watch?key=a&key=b").status);
    EXPECT_EQ(404, withRoot("").status);
    EXPECT_EQ(404, withRoot("?key=a").status);
    EXPECT_EQ(403, get(server.port(), "http://elsewhere.example/options").status);
    EXPECT_EQ(200, request(server.port(), "POST", root + "/messages", getMessage("a")).status);
}

TEST(Methods, ThatAPathIsNotFor_Are405AndTheRightOneIsTold) {
    const ServerProcess server;
    const struct {
        int line;
        const char* method;
        const char* path;
        const char* allow;
    } rows[] = {
        {__LINE__, "GET", "/messages", "POST"},     {__LINE__, "PUT", "/messages", "POST"},
        {__LINE__, "OPTIONS", "/messages", "POST"}, {__LINE__, "POST", "/options", "GET"},
        {__LINE__, "DELETE", "/options", "GET"},    {__LINE__, "PUT", "/options/a", "GET"},
        {__LINE__, "POST", "/watch?key=a", "GET"},  {__LINE__, "get", "/options", "GET"},
        {__LINE__, "NONSENSE", "/options", "GET"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const HttpAnswer answer = request(server.port(), row.method, row.path);
        EXPECT_EQ(405, answer.status);
        EXPECT_EQ(row.allow, answer.headers.at("allow"));
        EXPECT_EQ(std::string("Method must be ") + row.allow, errorOf(answer.body));
    }
}

TEST(Methods, Head_IsAnsweredWithAHeadOnly) {
    const ServerProcess server;
    const HttpAnswer put = request(server.port(), "PUT", "/options");
    const HttpAnswer head = request(server.port(), "HEAD", "/options");
    EXPECT_EQ(405, head.status);
    EXPECT_EQ("GET", head.headers.at("allow"));
    EXPECT_EQ(put.headers.at("content-length"), head.headers.at("content-length"));
    EXPECT_EQ("", head.body);
    for (const auto& answer :
         {request(server.port(), "HEAD", "/none"),
          request(server.port(), "HEAD", "/options", "", {"Host: e.example"})}) {
        EXPECT_EQ(4, answer.status / 100);
        EXPECT_TRUE(answer.has("content-length"));
        EXPECT_EQ("", answer.body);
    }
}

} // namespace
