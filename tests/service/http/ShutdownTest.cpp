/// How the server stops.
#include "service/support/HttpClient.hpp"
#include "service/support/InProcessServer.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <system_error>
#include <vector>

namespace {

using connector::configuration::OptionValue;
using connector::service::HttpLimits;
using test::get;
using test::getMessage;
using test::HttpClient;
using test::InProcessServer;
using test::Result;
using test::ServerProcess;

TEST(Shutdown, SucceedsWithoutRequests) {
    for (const int signal : {SIGINT, SIGTERM}) {
        SCOPED_TRACE(signal);
        ServerProcess server;
        EXPECT_EQ((Result{0, "", ""}), server.stop(signal));
    }
}

TEST(Shutdown, SucceedsAfterRequests) {
    ServerProcess server({}, {"-s", "k=1"});
    EXPECT_EQ(200, get(server.port(), "/options").status);
    EXPECT_EQ((Result{0, "", ""}), server.stop());
}

TEST(Shutdown, CompletesEventStreams) {
    for (const int signal : {SIGINT, SIGTERM}) {
        SCOPED_TRACE(signal);
        ServerProcess server({}, {"-s", "k=1"});
        std::vector<HttpClient> watchers;
        for (int i = 0; i < 10; ++i) {
            watchers.emplace_back(server.port());
            watchers.back().get("/watch?key=k");
            EXPECT_NE("", watchers.back().readLineStartingWith("data: "));
        }
        EXPECT_EQ((Result{0, "", ""}), server.stop(signal));
        for (HttpClient& watcher : watchers)
            EXPECT_EQ("\nevent: end\ndata: {}\n\n", watcher.readToEnd());
    }
}

TEST(Shutdown, IsFinal) {
    InProcessServer server;
    EXPECT_EQ(200, get(server.port(), "/options").status);
    server.close();
    server.service.start();
    EXPECT_THROW(HttpClient(server.port()), std::system_error);
}

/// So that the tests do not wait for the default timeout.
HttpLimits shortShutdown() {
    HttpLimits limits;
    limits.shutdown = std::chrono::milliseconds(500);
    return limits;
}

TEST(Shutdown, DoesNotWaitForAClientThatStopsReading) {
    InProcessServer server(shortShutdown());
    server.configuration->set("k", OptionValue(std::string("1"))).get();
    HttpClient watcher(server.port(), 4096);
    watcher.get("/watch?key=k");
    EXPECT_NE("", watcher.readLineStartingWith("data: "));
    for (int i = 0; i < 20; ++i)
        server.configuration->set("k", OptionValue(std::string(500000, 'x'))).get();
    server.close();
}

TEST(Shutdown, RespondsToIncompleteRequestsWithStatus408) {
    InProcessServer server(shortShutdown());
    HttpClient head(server.port());
    head.send("GET /opt");
    HttpClient body(server.port());
    body.send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
              "\r\nExpect: 100-continue\r\nContent-Length: 10\r\n\r\n");
    EXPECT_EQ("HTTP/1.1 100 Continue",
              body.readLine()); // so the server has probably read the first one, too
    EXPECT_EQ("", body.readLine());
    server.close();
    for (HttpClient* const client : {&head, &body}) {
        const test::HttpResponse response = client->response();
        EXPECT_EQ(408, response.status);
        EXPECT_EQ("Request did not arrive in time", test::errorOf(response.body));
    }
}

TEST(Shutdown, RespondsToRequestsInProgressWithStatus503) {
    ServerProcess server({}, {"-s", "k=1"});
    const std::string body = getMessage("k");
    std::optional<HttpClient> late(server.port());
    late->send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
               "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n");
    HttpClient watcher(server.port());
    watcher.get("/watch?key=k"); // its stream ends only after the message service has stopped
    EXPECT_NE("", watcher.readLineStartingWith("data: "));
    server.process().signal(SIGTERM);
    watcher.readToEnd();
    late->send(body);
    EXPECT_EQ(503, late->response().status);
    late.reset(); // otherwise the server would wait for the client to close the connection
    EXPECT_EQ((test::Result{0, "", ""}), server.process().finish());
}

TEST(Shutdown, ASecondSignalEndsTheProgramAtOnce) {
    ServerProcess server({}, {"-s", "k=1"});
    HttpClient late(server.port());
    late.send("GET /options HTTP/1.1\r\n"); // it is waited for
    HttpClient watcher(server.port());
    watcher.get("/watch?key=k");
    EXPECT_NE("", watcher.readLineStartingWith("data: "));
    server.process().signal(SIGTERM);
    watcher.readToEnd(); // the shutdown has begun
    EXPECT_EQ(128 + SIGTERM, server.stop().status);
}

TEST(Shutdown, DoesNotWaitForClientsThatHaveSentNothing) {
    HttpLimits longTimeouts;
    longTimeouts.connect = std::chrono::hours(1);
    longTimeouts.shutdown = std::chrono::hours(1);
    InProcessServer server(longTimeouts);
    std::vector<HttpClient> silent;
    for (int i = 0; i < 20; ++i)
        silent.emplace_back(server.port());
    EXPECT_EQ(200, get(server.port(), "/options").status);
    server.close();
    for (HttpClient& client : silent)
        EXPECT_EQ("", client.readToEnd());
}

/// The keys of a file that takes a minute to load: std::hash of libstdc++ is the same for all.
class CollidingKeys {
public:
    std::string next() {
        for (;;) {
            const std::uint64_t first = random();
            const std::uint64_t state = (seed ^ size * factor ^ mixed(first)) * factor;
            std::string key(size, '\0');
            std::memcpy(&key[0], &first, sizeof first);
            const std::uint64_t second = unmixed(state);
            std::memcpy(&key[sizeof first], &second, sizeof second);
            const auto isPlain = [](unsigned char byte) {
                return byte > ' ' && byte != 0x7F &&
                       std::string("=:\\#!").find(static_cast<char>(byte)) == std::string::npos;
            };
            if (std::all_of(key.begin(), key.end(), isPlain))
                return key;
        }
    }

private:
    static constexpr std::size_t size = 16;
    static constexpr std::uint64_t seed = 0xC70F6907;
    static constexpr std::uint64_t factor = 0xC6A4A7935BD1E995;

    static std::uint64_t shifted(std::uint64_t value) { return value ^ value >> 47; }
    static std::uint64_t mixed(std::uint64_t value) { return shifted(value * factor) * factor; }
    static std::uint64_t unmixed(std::uint64_t value) {
        std::uint64_t inverse = factor;
        for (int i = 0; i < 6; ++i)
            inverse *= 2 - factor * inverse;
        return shifted(value * inverse) * inverse;
    }

    std::mt19937_64 random;
};

TEST(Shutdown, EndsInTimeWhateverTheConfigurationDoes) {
    CollidingKeys keys;
    const std::hash<std::string> hash;
    if (hash(keys.next()) != hash(keys.next()))
        GTEST_SKIP() << "Not the hash function of libstdc++";
    std::string text;
    for (int i = 0; i < 150000; ++i)
        text += keys.next() + "=1\n";
    const test::TemporaryDirectory root;
    const std::string path = root.write("slow.properties", text).string();
    ServerProcess server({"--property-root", root.path.string()});
    const std::string body = test::addMessage("slow", path);
    HttpClient client(server.port());
    client.send("POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
                "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
    EXPECT_EQ(200, get(server.port(), "/healthz").status); // so the file is probably being loaded
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ((Result{0, "", ""}), server.stop());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
}

TEST(HttpServing, DoesNotReadStandardInput) {
    ServerProcess server;
    server.process().write("quit\n");
    EXPECT_EQ(200, get(server.port(), "/options").status);
    EXPECT_EQ((Result{0, "", ""}), server.stop());
}

} // namespace
