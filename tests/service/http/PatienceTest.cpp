/// Clients that let the server wait.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerInside.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace {

using connector::service::Limits;
using test::get;
using test::HttpAnswer;
using test::HttpClient;
using test::ServerInside;
using test::ServerProcess;

Limits impatient() {
    Limits limits;
    limits.patience.request = std::chrono::milliseconds(300);
    limits.patience.goodbye = std::chrono::milliseconds(300);
    return limits;
}

TEST(Patience, ARequestThatDoesNotComeInTime_Is408) {
    const ServerInside server(impatient());
    for (const char* beginning : {"P", "POST /messages HTTP/1.1\r\nHost: "}) {
        HttpClient client(server.port());
        client.send(beginning);
        const HttpAnswer answer = client.answer();
        EXPECT_EQ(408, answer.status);
        EXPECT_EQ("Request did not arrive in time", test::errorOf(answer.body));
    }
}

TEST(Patience, ABodyThatDoesNotComeInTime_Is408) {
    const ServerInside server(impatient());
    HttpClient client(server.port());
    client.send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
                "\r\nContent-Length: 2\r\n\r\n{");
    EXPECT_EQ(408, client.answer().status);
}

TEST(Patience, AClientThatSaysNothing_IsLetGo) {
    const ServerInside server(impatient());
    HttpClient client(server.port());
    EXPECT_EQ("", client.readToTheEnd());
}

TEST(Patience, AByteNowAndThen_WinsNoTime) {
    const ServerInside server(impatient());
    HttpClient client(server.port());
    client.send("G");
    std::string answer; // comes although there are always more bytes on their way
    while (answer.empty()) {
        client.send("E");
        answer = client.readWhatComesSoon();
    }
    EXPECT_EQ(0u, answer.find("HTTP/1.1 408 ")) << answer;
}

TEST(Limits, WhereNobodySaysOtherwise_AreThese) {
    using std::chrono::seconds;
    const Limits limits;
    EXPECT_EQ(seconds(10), limits.patience.request);
    EXPECT_EQ(seconds(60), limits.patience.response);
    EXPECT_EQ(seconds(3), limits.patience.goodbye);
    EXPECT_EQ(seconds(2), limits.patience.end);
    EXPECT_EQ(seconds(15), limits.commentInterval);
    EXPECT_EQ(4096u, limits.mostStreams);
}

TEST(Patience, ClientsThatStopInTheMiddle_BlockNobody) {
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
