/// Many clients at the same time.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>

namespace {

using test::get;
using test::HttpClient;
using test::post;
using test::ServerProcess;
using test::setMessage;

/// The test needs a descriptor for each client, as the server does.
void raiseDescriptorLimit() {
    rlimit limit{};
    ASSERT_EQ(0, ::getrlimit(RLIMIT_NOFILE, &limit));
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &limit));
}

TEST(ManyClients, TwoHundredSimultaneousRequestsAreAllServed) {
    const ServerProcess server({"--writable", ""});
    std::vector<HttpClient> clients;
    for (int i = 0; i < 200; ++i)
        clients.emplace_back(server.port());
    for (HttpClient& client : clients) // all requests begin before the first one ends
        client.send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()));
    for (int i = 0; i < 200; ++i) {
        const std::string body = setMessage("k" + std::to_string(i), "1");
        clients[static_cast<std::size_t>(i)].send(
            "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
    }
    for (HttpClient& client : clients)
        EXPECT_EQ(200, client.response().status);
    const std::string options = get(server.port(), "/options").body;
    for (int i = 0; i < 200; ++i)
        EXPECT_NE(options.npos, options.find("\"k" + std::to_string(i) + '"'));
}

TEST(ManyClients, CanSetReadAndWatchAtTheSameTime) {
    ServerProcess server({"--writable", ""}, {"-s", "k=0"});
    std::atomic<int> served{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&server, &served, i] {
            for (int n = 0; n < 25; ++n) {
                served += post(server.port(), setMessage("k", std::to_string(n))).status == 200;
                served += get(server.port(), i % 2 == 0 ? "/options" : "/options/k").status == 200;
                HttpClient watcher(server.port());
                watcher.get("/watch?key=k");
                served += !watcher.readLineStartingWith("data: ").empty();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(8 * 25 * 3, served);
    EXPECT_EQ((test::Result{0, "", ""}), server.stop());
}

TEST(ManyClients, AThousandWatchersAllReceiveTheValueAndTheEndOfTheStream) {
    raiseDescriptorLimit();
    ServerProcess server({"--writable", ""}, {"-s", "k=1"});
    std::vector<HttpClient> watchers;
    for (int i = 0; i < 1000; ++i) {
        watchers.emplace_back(server.port());
        watchers.back().get("/watch?key=k");
    }
    for (HttpClient& watcher : watchers)
        ASSERT_NE(std::string::npos, watcher.readLineStartingWith("data: ").find(R"("value":"1")"));
    EXPECT_EQ(200, post(server.port(), setMessage("k", "2")).status);
    for (HttpClient& watcher : watchers)
        ASSERT_NE(std::string::npos, watcher.readLineStartingWith("data: ").find(R"("value":"2")"));
    EXPECT_EQ((test::Result{0, "", ""}), server.stop());
    for (HttpClient& watcher : watchers)
        ASSERT_EQ("\nevent: end\ndata: {}\n\n", watcher.readToEnd());
}

} // namespace
