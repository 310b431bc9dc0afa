/// Clients that keep the server waiting.
#include "service/support/HttpClient.hpp"
#include "service/support/InProcessServer.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <chrono>
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
    limits.timeouts.request = std::chrono::milliseconds(300);
    limits.timeouts.close = std::chrono::milliseconds(300);
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
    EXPECT_EQ(seconds(10), limits.timeouts.request);
    EXPECT_EQ(seconds(60), limits.timeouts.response);
    EXPECT_EQ(seconds(3), limits.timeouts.close);
    EXPECT_EQ(seconds(2), limits.timeouts.shutdown);
    EXPECT_EQ(seconds(15), limits.commentInterval);
    EXPECT_EQ(4096u, limits.maxWatchers);
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
