/// The end of the server.
#include "serve/support/HttpClient.hpp"
#include "serve/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

namespace {

using test::get;
using test::getMessage;
using test::HttpClient;
using test::Result;
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
    ServerProcess server({}, {"-s", "k=1"});
    std::vector<HttpClient> watchers;
    for (int i = 0; i < 10; ++i) {
        watchers.emplace_back(server.port());
        watchers.back().get("/watch?key=k");
        EXPECT_NE("", watchers.back().readLineBeginning("data: "));
    }
    EXPECT_EQ((Result{0, "", ""}), server.stop());
    for (HttpClient& watcher : watchers)
        EXPECT_EQ(std::string::npos, watcher.readToTheEnd().find("data"));
}

TEST(Stop, WithAStoppedReader_Ends) {
    ServerProcess server({"--writable", ""}, {"-s", "k=1"});
    HttpClient watcher(server.port(), 4096);
    watcher.get("/watch?key=k");
    EXPECT_NE("", watcher.readLineBeginning("data: "));
    for (int i = 0; i < 20; ++i)
        test::post(server.port(), test::setMessage("k", std::string(500000, 'x')));
    EXPECT_EQ((Result{0, "", ""}), server.stop());
}

TEST(Stop, WithHalfARequest_AnswersTheRestWith503) {
    ServerProcess server({}, {"-s", "k=1"});
    const std::string body = getMessage("k");
    HttpClient late(server.port());
    late.send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
              "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n");
    HttpClient watcher(server.port());
    watcher.get("/watch?key=k"); // comes behind the late one, and its end behind the service's
    EXPECT_NE("", watcher.readLineBeginning("data: "));
    server.process().signal(SIGTERM);
    watcher.readToTheEnd();
    late.send(body);
    EXPECT_EQ(503, late.answer().status);
    EXPECT_EQ(0, server.stop().status);
}

TEST(Stop, WithClientsThatSayNothing_Ends) {
    ServerProcess server;
    std::vector<HttpClient> silent;
    for (int i = 0; i < 20; ++i)
        silent.emplace_back(server.port());
    EXPECT_EQ(200, get(server.port(), "/options").status);
    EXPECT_EQ((Result{0, "", ""}), server.stop());
}

TEST(Serving, StandardInput_IsNotRead) {
    ServerProcess server;
    server.process().write("quit\n"); // is not read
    EXPECT_EQ(200, get(server.port(), "/options").status);
    EXPECT_EQ((Result{0, "", ""}), server.stop());
}

} // namespace
