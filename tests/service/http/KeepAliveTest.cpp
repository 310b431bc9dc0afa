/// Several requests on one connection.
#include "service/support/HttpClient.hpp"
#include "service/support/InProcessServer.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using test::getMessage;
using test::HttpClient;
using test::HttpResponse;
using test::InProcessServer;

class KeepAlive : public testing::Test {
protected:
    KeepAlive() { server.configuration->set("a", std::string("1")).get(); }

    std::string request(const std::string& line, const std::string& headers = "") const {
        return line + "\r\nHost: 127.0.0.1:" + std::to_string(server.port()) + "\r\n" + headers +
               "\r\n";
    }

    const InProcessServer server;
};

TEST_F(KeepAlive, RequestsFollowEachOther) {
    HttpClient client(server.port());
    for (int i = 0; i < 3; ++i) {
        client.send(request("GET /options/a HTTP/1.1"));
        EXPECT_EQ(200, client.response().status);
        client.send(request("GET /options/none HTTP/1.1"));
        EXPECT_EQ(404, client.response().status);
    }
}

TEST_F(KeepAlive, PipelinedRequestsAreAnsweredInTheirOrder) {
    const std::string body = getMessage("a");
    std::string all;
    constexpr int count = 50;
    for (int i = 0; i < count; ++i)
        all += request("GET /options/none" + std::to_string(i) + " HTTP/1.1") +
               request("POST /messages HTTP/1.1",
                       "Content-Length: " + std::to_string(body.size()) + "\r\n") +
               body + request("HEAD /healthz HTTP/1.1");
    HttpClient client(server.port());
    client.send(all);
    for (int i = 0; i < count; ++i) {
        const HttpResponse missing = client.response();
        EXPECT_EQ(404, missing.status);
        EXPECT_NE(missing.body.npos, missing.body.find(": none" + std::to_string(i) + '"'));
        EXPECT_NE(std::string::npos, client.response().body.find(R"("value":"1")"));
        EXPECT_EQ("HTTP/1.1 200 OK", client.readLine());
        while (!client.readLine().empty()) {
        }
    }
}

TEST_F(KeepAlive, TheConnectionEndsWhenTheClientAsksForIt) {
    HttpClient client(server.port());
    client.send(request("GET /options/a HTTP/1.1", "Connection: close\r\n"));
    const HttpResponse response = client.response();
    EXPECT_EQ("close", response.headers.at("connection"));
    EXPECT_EQ("", client.readToEnd());
}

TEST_F(KeepAlive, WithHttp10TheConnectionEndsUnlessTheClientAsksToKeepIt) {
    HttpClient once(server.port());
    once.send(request("GET /options/a HTTP/1.0"));
    EXPECT_EQ(200, once.response().status);
    EXPECT_EQ("", once.readToEnd());

    HttpClient kept(server.port());
    for (int i = 0; i < 2; ++i) {
        kept.send(request("GET /options/a HTTP/1.0", "Connection: keep-alive\r\n"));
        EXPECT_EQ("keep-alive", kept.response().headers.at("connection"));
    }
}

TEST_F(KeepAlive, ARefusedRequestWithoutABodyKeepsTheConnection) {
    HttpClient client(server.port());
    client.send(request("GET /nowhere HTTP/1.1") + request("GET /options/a HTTP/1.1"));
    EXPECT_EQ(404, client.response().status);
    EXPECT_EQ(200, client.response().status);
}

TEST_F(KeepAlive, ARefusedRequestWithABodyEndsTheConnection) {
    HttpClient client(server.port());
    client.send(request("POST /nowhere HTTP/1.1", "Content-Length: 2\r\n") + "{}" +
                request("GET /options/a HTTP/1.1"));
    EXPECT_EQ(404, client.response().status);
    EXPECT_EQ("", client.readToEnd());
}

TEST_F(KeepAlive, AfterAnEmptyLineTheNextRequestIsServed) {
    HttpClient client(server.port());
    client.send(request("GET /options/a HTTP/1.1") + "\r\n" + request("GET /options/a HTTP/1.1"));
    EXPECT_EQ(200, client.response().status);
    EXPECT_EQ(200, client.response().status);
}

} // namespace
