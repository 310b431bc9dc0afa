/// PUT and DELETE /options/KEY, and GET /explain/KEY.
#include "service/support/HttpClient.hpp"
#include "service/support/InProcessServer.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using test::errorOf;
using test::get;
using test::HttpClient;
using test::HttpResponse;
using test::InProcessServer;
using test::put;
using test::request;
using test::ServerProcess;

std::string option(const std::string& key, const std::string& value,
                   const std::string& source = "override") {
    return R"({"key":")" + key + R"(","source":")" + source + R"(","value":)" + value + "}\n";
}

TEST(PutOption, SetsTheValueAndRespondsWithTheOption) {
    const InProcessServer server;
    const struct {
        int line;
        const char* body;
        const char* value;
    } rows[] = {
        {__LINE__, "true", R"({"type":"bool","value":true})"},
        {__LINE__, "-7", R"({"type":"int","value":-7})"},
        {__LINE__, "4294967295", R"({"type":"uint","value":4294967295})"},
        {__LINE__, "4294967296", R"({"type":"double","value":4294967296})"},
        {__LINE__, "0.5", R"({"type":"double","value":0.5})"},
        {__LINE__, R"("text")", R"({"type":"string","value":"text"})"},
        {__LINE__, "[]", R"({"type":"stringArray","value":[]})"},
        {__LINE__, "[1,2]", R"({"type":"intArray","value":[1,2]})"},
        {__LINE__, "[1,0.5]", R"({"type":"doubleArray","value":[1,0.5]})"},
        {__LINE__, R"({"type":"uint","value":8080})", R"({"type":"uint","value":8080})"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const HttpResponse response = put(server.port(), "k", row.body);
        EXPECT_EQ(200, response.status);
        EXPECT_EQ(option("k", row.value), response.body);
        EXPECT_EQ(response.body, get(server.port(), "/options/k").body);
    }
}

TEST(PutOption, RefusesWhatIsNoValueAndChangesNothing) {
    const InProcessServer server;
    server.configuration->set("k", 1).get();
    const struct {
        int line;
        const char* body;
        int status;
    } rows[] = {
        {__LINE__, "", 400},
        {__LINE__, "{", 400},
        {__LINE__, "null", 422},
        {__LINE__, "{}", 422},
        {__LINE__, R"({"type":"int"})", 422},
        {__LINE__, R"({"value":1})", 422},
        {__LINE__, R"({"type":"nothing","value":1})", 422},
        {__LINE__, R"({"type":"int","value":"1"})", 422},
        {__LINE__, R"({"type":"int","value":1.5})", 422},
        {__LINE__, R"({"type":"string","value":1})", 422},
        {__LINE__, R"([1,"a"])", 422},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.status, put(server.port(), "k", row.body).status);
        EXPECT_EQ(option("k", R"({"type":"int","value":1})"),
                  get(server.port(), "/options/k").body);
    }
    EXPECT_EQ(413, put(server.port(), "k", std::string(1024 * 1024 + 1, ' ')).status);
}

TEST(PutOption, RequiresAWritablePrefix) {
    const ServerProcess server({"--writable", "net."}, {"-s", "a=1"});
    EXPECT_EQ(200, put(server.port(), "net.port", "1").status);
    const HttpResponse refused = put(server.port(), "a", "1");
    EXPECT_EQ(403, refused.status);
    EXPECT_EQ("Key must not be set: a (--writable PREFIX would allow it)", errorOf(refused.body));
    EXPECT_EQ(403, request(server.port(), "DELETE", "/options/a").status);
    EXPECT_EQ(200, get(server.port(), "/options/a").status);
}

TEST(PutOption, RequiresJsonIfTheContentTypeIsGiven) {
    const InProcessServer server;
    const auto statusFor = [&](const std::string& header) {
        return request(server.port(), "PUT", "/options/k", "1", {header}).status;
    };
    EXPECT_EQ(200, statusFor("X: y"));
    EXPECT_EQ(200, statusFor("Content-Type: Application/JSON; charset=utf-8"));
    EXPECT_EQ(415, statusFor("Content-Type: text/plain"));
    EXPECT_EQ(400, statusFor("Content-Type: application/json\r\nContent-Type: application/json"));
}

TEST(PutOption, MasksASecret) {
    const InProcessServer server;
    EXPECT_EQ(option("my.token", R"({"type":"string","value":"******"})"),
              put(server.port(), "my.token", "\"hush\"").body);
}

TEST(DeleteOption, RemovesTheValueThatPutWouldReplace) {
    const InProcessServer server;
    server.configuration->set("k", 1, "default").get();
    server.configuration->set("k", 2).get();
    HttpClient watcher(server.port());
    watcher.get("/watch?key=k");
    EXPECT_NE("", watcher.readLineStartingWith("data: "));
    const HttpResponse response = request(server.port(), "DELETE", "/options/k");
    EXPECT_EQ(200, response.status);
    EXPECT_EQ(option("k", R"({"type":"int","value":1})", "default"), response.body);
    EXPECT_NE(std::string::npos,
              watcher.readLineStartingWith("data: ").find(R"("source":"default")"));
    const HttpResponse again = request(server.port(), "DELETE", "/options/k");
    EXPECT_EQ(404, again.status); // although "default" has the option
    EXPECT_EQ("There is no value that PUT would replace: k", errorOf(again.body));
}

TEST(DeleteOption, RespondsWithTheKeyIfNoSourceHasAValueThen) {
    const InProcessServer server;
    server.configuration->set("k", 1).get();
    EXPECT_EQ("{\"key\":\"k\"}\n", request(server.port(), "DELETE", "/options/k").body);
    EXPECT_EQ(404, get(server.port(), "/options/k").status);
}

TEST(GetExplanation, RespondsLikeExplain) {
    const std::vector<std::string> sources{"-s", "b:int=1", "-d", "b=2", "-s", "my.token=hush"};
    const ServerProcess server({}, sources);
    for (const char* key : {"b", "my.token", "none"}) {
        SCOPED_TRACE(key);
        std::vector<std::string> arguments = sources;
        arguments.insert(arguments.end(), {"explain", "--json", key});
        const HttpResponse response = get(server.port(), std::string("/explain/") + key);
        EXPECT_EQ(200, response.status);
        EXPECT_EQ(test::runConnectorConfig(arguments).output, response.body);
    }
}

TEST(GetExplanation, OfAConfigurationThatTakesNoValueNamesNoSource) {
    const InProcessServer server;
    server.configuration->removeSource("override").get();
    server.configuration->removeSource("default").get();
    EXPECT_EQ("{\"key\":\"k\",\"sources\":[]}\n", get(server.port(), "/explain/k").body);
}

TEST(Problems, NameTheStatusTheDetailAndTheKey) {
    const InProcessServer server;
    const HttpResponse response = get(server.port(), "/options/none");
    EXPECT_EQ("application/problem+json", response.headers.at("content-type"));
    EXPECT_EQ(R"({"error":{"type":"std::runtime_error",)"
              R"("text":"No option with the specified key was found: none"},)"
              R"("type":"about:blank","title":"Not Found","status":404,)"
              R"("detail":"No option with the specified key was found: none","key":"none"})"
              "\n",
              response.body);
}

TEST(Accepting, ATypeThatTheRouteDoesNotHaveGets406) {
    const InProcessServer server;
    const auto statusFor = [&](const std::string& path, const std::string& accept) {
        return get(server.port(), path, {"Accept: " + accept}).status;
    };
    EXPECT_EQ(200, statusFor("/options", "*/*"));
    EXPECT_EQ(200, statusFor("/options", "text/html, application/json;q=0.5"));
    EXPECT_EQ(200, statusFor("/options", "application/*"));
    EXPECT_EQ(406, statusFor("/options", "text/html"));
    EXPECT_EQ(406, statusFor("/options", "application/json;q=0, */*"));
    EXPECT_EQ(406, statusFor("/watch?key=a", "application/json"));
    EXPECT_EQ(200, statusFor("/metrics", "text/plain"));
    EXPECT_EQ(404, statusFor("/nowhere", "text/html"));
}

} // namespace
