/// More than a server has room for: descriptors, memory, clients that leave or never read.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include <sys/resource.h>

namespace {

using test::get;
using test::HttpClient;
using test::HttpResponse;
using test::put;
using test::ServerProcess;
using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif
constexpr int slowdown = isSanitized ? 10 : 1;

/// Seconds. A server that waits for its clients takes longer: none of them reads in a minute.
constexpr int withoutWaiting = 30;

const std::string anyAddress = "127.0.0.1:0";

/// The test needs a descriptor for each client.
void raiseDescriptorLimit() {
    rlimit limit{};
    ASSERT_EQ(0, ::getrlimit(RLIMIT_NOFILE, &limit));
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &limit));
}

std::vector<HttpClient> watchersOf(const std::string& key, std::uint16_t port, int count,
                                   int receiveBuffer = 0) {
    std::vector<HttpClient> watchers;
    for (int i = 0; i < count; ++i) {
        watchers.emplace_back(port, receiveBuffer);
        watchers.back().get("/watch?key=" + key);
    }
    return watchers;
}

/// @return the memory of a process that is no file, in bytes
long memoryOf(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, 8, "RssAnon:") == 0)
            return std::stol(line.substr(8)) * 1024;
    }
    return 0;
}

double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// @return the processor time that a process has used, in seconds. What others do at the same time
///         does not count, unlike in the time that passes.
double processorTimeOf(pid_t process) {
    clockid_t clock{};
    timespec time{};
    EXPECT_EQ(0, ::clock_getcpuclockid(process, &clock));
    EXPECT_EQ(0, ::clock_gettime(clock, &time));
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

bool isServed(std::uint16_t port) {
    return get(port, "/healthz").status == 200;
}

TEST(Overload, WithoutDescriptorsClientsAreDisconnectedAtOnce) {
    if (isSanitized)
        GTEST_SKIP() << "the checks of types need descriptors of their own";
    const ServerProcess server({}, {"-s", "k=1"}, anyAddress, "ulimit -n 64");
    {
        const std::vector<HttpClient> watchers = watchersOf("k", server.port(), 58);
        const Clock::time_point begin = Clock::now();
        for (int i = 0; i < 40; ++i) {
            const int status = get(server.port(), "/options/k").status;
            EXPECT_TRUE(status == 200 || status == 503 || status == 0) << status;
        }
        EXPECT_LT(secondsSince(begin), withoutWaiting);
    }
    while (!isServed(server.port())) { // until the server has noticed that the watchers left
    }
}

TEST(Overload, TheSoftLimitOfDescriptorsIsRaised) {
    const ServerProcess server({}, {"-s", "k=1"}, anyAddress, "ulimit -Sn 64");
    std::vector<HttpClient> watchers = watchersOf("k", server.port(), 100);
    for (HttpClient& watcher : watchers)
        EXPECT_NE("", watcher.readLineStartingWith("data: "));
    EXPECT_TRUE(isServed(server.port()));
}

TEST(Overload, WithoutMemoryRequestsFailAndEverythingElseGoesOn) {
    if (isSanitized)
        GTEST_SKIP() << "sanitizers reserve more address space than the limit";
    // More arenas, each with 64 MiB of address space, could leave no room for values.
    ServerProcess server({"--writable", ""}, {"-s", "k=1"}, anyAddress,
                         "export MALLOC_ARENA_MAX=2; ulimit -v 160000");
    std::vector<HttpClient> watchers = watchersOf("k", server.port(), 20);
    for (HttpClient& watcher : watchers)
        ASSERT_NE("", watcher.readLineStartingWith("data: "));

    const std::string large = '"' + std::string(1000000, 'x') + '"';
    int failures = 0;
    std::vector<std::string> stored;
    for (int i = 0; i < 1000 && failures < 20; ++i) {
        const std::string key = "large" + std::to_string(i);
        const int status = put(server.port(), key, large).status;
        if (status == 200) {
            stored.push_back(key);
            continue;
        }
        EXPECT_TRUE(status == 503 || status == 0) << status;
        ++failures;
    }
    EXPECT_EQ(20, failures);
    EXPECT_GT(stored.size(), 10u);

    for (int i = 0; i < 3; ++i) // in between, this may succeed or not
        get(server.port(), "/options");
    while (!isServed(server.port())) { // until the memory of these is free again
    }
    for (const std::string& key : stored) {
        while (test::request(server.port(), "DELETE", "/options/" + key).status != 200) {
        }
    }
    EXPECT_EQ(200, put(server.port(), "k", "2").status);
    for (HttpClient& watcher : watchers)
        EXPECT_NE(std::string::npos, watcher.readLineStartingWith("data: ").find(R"("value":2)"));
    EXPECT_EQ((test::Result{0, "", ""}), server.stop());
}

TEST(Overload, WorkForClientsThatHaveLeftStops) {
    std::string file;
    for (int i = 0; i < 50000; ++i)
        file += "key" + std::to_string(i) + " = a value of some length, as files have them\n";
    const test::TemporaryFile properties(file);
    ServerProcess server({}, {"--file", properties.path()});
    for (int i = 0; i < 1100 / slowdown; ++i) {
        HttpClient client(server.port());
        client.get("/options");
    }
    const double before = processorTimeOf(server.process().processId());
    EXPECT_TRUE(isServed(server.port()));
    EXPECT_LT(processorTimeOf(server.process().processId()) - before, 1 * slowdown);
    const Clock::time_point begin = Clock::now();
    EXPECT_EQ(0, server.stop().status);
    EXPECT_LT(secondsSince(begin), withoutWaiting);
}

TEST(Overload, AThousandReadersOfOneTextDoNotDelayTheEnd) {
    std::string file;
    for (int i = 0; i < 50000; ++i)
        file += "key" + std::to_string(i) + " = a value of some length, as files have them\n";
    const test::TemporaryFile properties(file);
    ServerProcess server({}, {"--file", properties.path()});
    std::vector<HttpClient> clients;
    for (int i = 0; i < 100; ++i) {
        clients.emplace_back(server.port(), 4096);
        clients.back().get("/options");
    }
    for (HttpClient& client : clients)
        EXPECT_EQ("HTTP/1.1 200 OK", client.readLine());
    if (!isSanitized) {
        EXPECT_LT(memoryOf(server.process().processId()), 100 * 1000 * 1000);
    }
    clients.clear();
    const Clock::time_point begin = Clock::now();
    EXPECT_EQ(0, server.stop().status);
    EXPECT_LT(secondsSince(begin), withoutWaiting);
}

/// @return the prefix "abcdefgh" in one of 256 encodings
std::string encodedPrefix(int encoding) {
    std::string prefix;
    for (int i = 0; i < 8; ++i) {
        const char hex = static_cast<char>('1' + i);
        prefix += (encoding >> i) % 2 == 0 ? std::string(1, static_cast<char>('a' + i))
                                           : std::string("%6") + hex;
    }
    return prefix;
}

TEST(Overload, AListIsSharedHoweverItIsAskedFor) {
    constexpr int clientCount = 100;
    constexpr int optionCount = 20000;
    std::string file;
    for (int i = 0; i < optionCount; ++i)
        file += "abcdefgh" + std::to_string(i) + " = x\n";
    const test::TemporaryFile properties(file);
    ServerProcess server({}, {"--file", properties.path()});
    std::vector<HttpClient> clients;
    for (int i = 0; i < clientCount; ++i)
        clients.emplace_back(server.port());
    for (int i = 0; i < clientCount; ++i)
        clients[static_cast<std::size_t>(i)].get("/options?prefix=" + encodedPrefix(i));
    for (HttpClient& client : clients)
        EXPECT_EQ("HTTP/1.1 200 OK", client.readLine());
    const std::string metrics = get(server.port(), "/metrics").body;
    const std::string name = "\nconnector_lookups_total ";
    const long lookups = std::stol(metrics.substr(metrics.find(name) + name.size()));
    EXPECT_LE(optionCount, lookups);
    EXPECT_GT(clientCount / 2 * optionCount, lookups); // a list for each client would be twice that
}

TEST(Overload, IdleClientsKeepNoMemoryForTheirRequests) {
    ServerProcess server({"--writable", ""});
    const std::string body = '1' + std::string(1000000, ' ');
    const std::string request =
        "PUT /options/k HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
        "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    const pid_t process = server.process().processId();
    const long before = memoryOf(process);
    std::vector<HttpClient> clients;
    for (int i = 0; i < 200; ++i) {
        clients.emplace_back(server.port());
        clients.back().send(request);
        ASSERT_EQ(200, clients.back().response().status);
    }
    if (!isSanitized) {
        EXPECT_LT(memoryOf(process) - before, 50 * 1000 * 1000); // their buffers had 200 MB
    }
}

TEST(Overload, LargeValuesThatAreNotReadDoNotPileUp) {
    ServerProcess server({"--writable", ""}, {"-s", "large=1"});
    ASSERT_EQ(200, put(server.port(), "large", '"' + std::string(1000000, 'x') + '"').status);
    std::vector<HttpClient> clients;
    for (int i = 0; i < 300 / slowdown; ++i) {
        clients.emplace_back(server.port(), 4096);
        clients.back().get("/options/large");
        EXPECT_EQ("HTTP/1.1 200 OK", clients.back().readLine());
    }
    if (!isSanitized) {
        EXPECT_LT(memoryOf(server.process().processId()), 100 * 1000 * 1000); // copies: 300 MB
    }
    clients.clear();
    EXPECT_EQ(0, server.stop().status);
}

TEST(Overload, LargeEventsDoNotDelayOthersNorPileUp) {
    raiseDescriptorLimit();
    ServerProcess server({"--writable", ""}, {"-s", "large=1", "-s", "small=0"});
    std::vector<HttpClient> idle = watchersOf("large", server.port(), 1500 / slowdown, 4096);
    for (HttpClient& watcher : idle)
        ASSERT_NE("", watcher.readLineStartingWith("data: "));
    HttpClient other(server.port());
    other.get("/watch?key=small");
    ASSERT_NE("", other.readLineStartingWith("data: "));
    const pid_t process = server.process().processId();
    const long before = memoryOf(process);

    for (int round = 1; round <= 3; ++round) { // none of the many reads what it is sent
        const std::string value(1000000, static_cast<char>('a' + round));
        ASSERT_EQ(200, put(server.port(), "large", '"' + value + '"').status);
        ASSERT_EQ(200, put(server.port(), "small", std::to_string(round)).status);
        EXPECT_NE("", other.readLineStartingWith("data: "));
    }
    if (!isSanitized) {
        EXPECT_LT(memoryOf(process) - before, 100 * 1000 * 1000); // copies would be 1.5 GB
    }
    const Clock::time_point begin = Clock::now();
    EXPECT_EQ(0, server.stop().status);
    EXPECT_LT(secondsSince(begin), withoutWaiting);
}

} // namespace
