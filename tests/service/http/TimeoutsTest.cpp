/// Clients that keep the server waiting.
#include "service/support/HttpClient.hpp"
#include "service/support/InProcessServer.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace {

using connector::service::HttpLimits;
using test::get;
using test::HttpClient;
using test::HttpResponse;
using test::InProcessServer;
using test::ServerProcess;

HttpLimits shortTimeouts() {
    HttpLimits limits;
    limits.connect = std::chrono::milliseconds(300);
    limits.head = std::chrono::milliseconds(300);
    limits.request = std::chrono::milliseconds(300);
    limits.idle = std::chrono::milliseconds(300);
    limits.close = std::chrono::milliseconds(300);
    return limits;
}

TEST(Timeouts, AnIncompleteHeadGets408) {
    const InProcessServer server(shortTimeouts());
    for (const char* beginning : {"P", "POST /messages HTTP/1.1\r\nHost: "}) {
        HttpClient client(server.port());
        client.send(beginning);
        const HttpResponse response = client.response();
        EXPECT_EQ(408, response.status);
        EXPECT_EQ("Request did not arrive in time", test::errorOf(response.body));
    }
}

TEST(Timeouts, AnIncompleteBodyGets408) {
    const InProcessServer server(shortTimeouts());
    HttpClient client(server.port());
    client.send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
                "\r\nContent-Length: 2\r\n\r\n{");
    EXPECT_EQ(408, client.response().status);
}

TEST(Timeouts, AClientThatSendsNothingIsDisconnected) {
    const InProcessServer server(shortTimeouts());
    HttpClient client(server.port());
    EXPECT_EQ("", client.readToEnd());
}

TEST(Timeouts, AnEmptyLineBehindARequestIsNoIncompleteHead) {
    const InProcessServer server(shortTimeouts());
    for (const char* line : {"\r\n", "\r"}) {
        HttpClient client(server.port());
        client.send("GET /options HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
                    "\r\n\r\n" + line);
        EXPECT_EQ(200, client.response().status);
        EXPECT_EQ("", client.readToEnd());
    }
}

TEST(Timeouts, AClientThatSendsNoFurtherRequestIsDisconnected) {
    const InProcessServer server(shortTimeouts());
    HttpClient client(server.port());
    client.get("/options");
    EXPECT_EQ(200, client.response().status);
    EXPECT_EQ("", client.readToEnd());
}

TEST(Timeouts, AnEventStreamThatIsNotReadEnds) {
    HttpLimits limits;
    limits.stall = std::chrono::milliseconds(100);
    const InProcessServer server(limits);
    HttpClient client(server.port(), 4096);
    client.get("/watch?key=k");
    EXPECT_EQ("HTTP/1.1 200 OK", client.readLine());
    server.configuration->set("k", std::string(5000000, 'x')).get();
    while (get(server.port(), "/metrics").body.find("connector_event_streams 0\n") ==
           std::string::npos) {
    }
    EXPECT_LT(client.readToEnd().size(), 5000000u);
}

TEST(Timeouts, SendingSingleBytesDoesNotExtendTheTimeout) {
    const InProcessServer server(shortTimeouts());
    HttpClient client(server.port());
    client.send("G");
    std::string response; // arrives although the client keeps sending
    while (response.empty()) {
        client.send("E");
        response = client.readAvailable();
    }
    EXPECT_EQ(0u, response.find("HTTP/1.1 408 ")) << response;
}

TEST(HttpLimits, DefaultsAreAsDocumented) {
    using std::chrono::seconds;
    const HttpLimits limits;
    EXPECT_EQ(seconds(10), limits.connect);
    EXPECT_EQ(seconds(10), limits.head);
    EXPECT_EQ(seconds(30), limits.request);
    EXPECT_EQ(seconds(60), limits.idle);
    EXPECT_EQ(seconds(60), limits.stall);
    EXPECT_EQ(seconds(3), limits.close);
    EXPECT_EQ(seconds(5), limits.shutdown);
    EXPECT_EQ(seconds(15), limits.comment);
    EXPECT_EQ(32u * 1024, limits.headSize);
    EXPECT_EQ(10000u, limits.connections);
}

TEST(Timeouts, IncompleteRequestsDoNotBlockOtherClients) {
    const ServerProcess server;
    std::vector<HttpClient> stopped;
    for (int i = 0; i < 200; ++i) {
        stopped.emplace_back(server.port());
        stopped.back().send(i % 2 == 0 ? "POST /messages HTTP/1.1\r\n" : "");
    }
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(200, get(server.port(), "/options").status);
}

} // namespace
