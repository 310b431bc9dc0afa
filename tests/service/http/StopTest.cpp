/// The end of the server.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerInside.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <vector>

namespace {

using connector::configuration::OptionValue;
using connector::service::Limits;
using test::get;
using test::getMessage;
using test::HttpClient;
using test::Result;
using test::ServerInside;
using test::ServerProcess;

TEST(Stop, OfAnIdleServer_IsASuccess) {
    for (const int signal : {SIGINT, SIGTERM}) {
        SCOPED_TRACE(signal);
        ServerProcess server;
        EXPECT_EQ((Result{0, "", ""}), server.stop(signal));
    }
}

TEST(Stop, OfAServerThatHasServed_IsASuccess) {
    ServerProcess server({}, {"-s", "k=1"});
    EXPECT_EQ(200, get(server.port(), "/options").status);
    EXPECT_EQ((Result{0, "", ""}), server.stop());
}

TEST(Stop, WithWatchers_CompletesTheirStreams) {
    for (const int signal : {SIGINT, SIGTERM}) {
        SCOPED_TRACE(signal);
        ServerProcess server({}, {"-s", "k=1"});
        std::vector<HttpClient> watchers;
        for (int i = 0; i < 10; ++i) {
            watchers.emplace_back(server.port());
            watchers.back().get("/watch?key=k");
            EXPECT_NE("", watchers.back().readLineBeginning("data: "));
        }
        EXPECT_EQ((Result{0, "", ""}), server.stop(signal));
        for (HttpClient& watcher : watchers)
            EXPECT_EQ(std::string::npos, watcher.readToTheEnd().find("data"));
    }
}

/// What is waited for is waited for by these for a moment only.
Limits hasty() {
    Limits limits;
    limits.patience.end = std::chrono::milliseconds(50);
    return limits;
}

TEST(Stop, WithAStoppedReader_Ends) {
    ServerInside server(hasty());
    server.configuration->set("k", OptionValue(std::string("1")));
    HttpClient watcher(server.port(), 4096);
    watcher.get("/watch?key=k");
    EXPECT_NE("", watcher.readLineBeginning("data: "));
    for (int i = 0; i < 20; ++i)
        server.configuration->set("k", OptionValue(std::string(500000, 'x')));
    server.close();
}

TEST(Stop, WithHalfARequestThatStaysHalf_AnswersIt) {
    ServerInside server(hasty());
    HttpClient head(server.port());
    head.send("GET /opt");
    HttpClient body(server.port());
    body.send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
              "\r\nExpect: 100-continue\r\nContent-Length: 10\r\n\r\n");
    EXPECT_EQ("HTTP/1.1 100 Continue", body.readLine()); // the one before is there, too
    EXPECT_EQ("", body.readLine());
    server.close();
    for (HttpClient* const client : {&head, &body}) {
        const test::HttpAnswer answer = client->answer();
        EXPECT_EQ(408, answer.status);
        EXPECT_EQ("Request did not arrive in time", test::errorOf(answer.body));
    }
}

TEST(Stop, WithHalfARequest_AnswersTheRestWith503) {
    ServerProcess server({}, {"-s", "k=1"});
    const std::string body = getMessage("k");
    std::optional<HttpClient> late(server.port());
    late->send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
               "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n");
    HttpClient watcher(server.port());
    watcher.get("/watch?key=k"); // comes behind the late one, and its end behind the service's
    EXPECT_NE("", watcher.readLineBeginning("data: "));
    server.process().signal(SIGTERM);
    watcher.readToTheEnd();
    late->send(body);
    EXPECT_EQ(503, late->answer().status);
    late.reset(); // or the server would wait for it to hang up
    EXPECT_EQ((test::Result{0, "", ""}), server.stop());
}

TEST(Stop, WithClientsThatSayNothing_EndsAtOnce) {
    Limits patient;
    patient.patience.request = std::chrono::hours(1);
    patient.patience.end = std::chrono::hours(1);
    ServerInside server(patient);
    std::vector<HttpClient> silent;
    for (int i = 0; i < 20; ++i)
        silent.emplace_back(server.port());
    EXPECT_EQ(200, get(server.port(), "/options").status);
    server.close();
    for (HttpClient& client : silent)
        EXPECT_EQ("", client.readToTheEnd());
}

TEST(Serving, StandardInput_IsNotRead) {
    ServerProcess server;
    server.process().write("quit\n"); // is not read
    EXPECT_EQ(200, get(server.port(), "/options").status);
    EXPECT_EQ((Result{0, "", ""}), server.stop());
}

} // namespace
