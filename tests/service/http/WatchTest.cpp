/// GET /watch
#include "service/support/HttpClient.hpp"
#include "service/support/InProcessServer.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <set>
#include <string>

namespace {

using connector::configuration::OptionValue;
using connector::service::HttpLimits;
using test::get;
using test::HttpClient;
using test::HttpResponse;
using test::InProcessServer;
using test::post;
using test::ServerProcess;
using test::setMessage;

std::string event(const std::string& key, const std::string& value) {
    return R"(data: {"key":")" + key +
           R"(","source":"override","value":{"type":"string","value":")" + value + "\"}}";
}

/// @return a client whose watch request the server has accepted
HttpClient watcher(std::uint16_t port, const std::string& key, int receiveBuffer = 0) {
    HttpClient client(port, receiveBuffer);
    client.get("/watch?key=" + key);
    EXPECT_EQ("HTTP/1.1 200 OK", client.readLine());
    while (!client.readLine().empty()) {
    }
    return client;
}

TEST(WatchRoute, RespondsWithAnEventStream) {
    const ServerProcess server;
    HttpClient client(server.port());
    client.get("/watch?key=k");
    EXPECT_EQ("HTTP/1.1 200 OK", client.readLine());
    EXPECT_EQ("Content-Type: text/event-stream", client.readLineStartingWith("Content-Type"));
}

TEST(WatchRoute, SendsTheCurrentValueFirst) {
    const ServerProcess server({}, {"-s", "k=1"});
    HttpClient client = watcher(server.port(), "k");
    EXPECT_EQ(0u, client.readLine().find("id: "));
    EXPECT_EQ(event("k", "1"), client.readLine());
    EXPECT_EQ("", client.readLine());
}

TEST(WatchRoute, SendsAnEventForEachChange) {
    const ServerProcess server({"--writable", ""});
    HttpClient client = watcher(server.port(), "k");
    for (const char* value : {"1", "2", "2"}) {
        EXPECT_EQ(200, post(server.port(), setMessage("other", "0")).status);
        EXPECT_EQ(200, post(server.port(), setMessage("k", value)).status);
        EXPECT_EQ(event("k", value), client.readLineStartingWith("data: "));
    }
}

TEST(WatchRoute, DecodesTheKey) {
    const ServerProcess server({}, {"-s", "a b&c=1"});
    EXPECT_EQ(event("a b&c", "1"),
              watcher(server.port(), "a%20b%26c").readLineStartingWith("data: "));
    EXPECT_EQ(event("a b&c", "1"),
              watcher(server.port(), "a+b%26c").readLineStartingWith("data: "));
}

TEST(WatchRoute, MasksSecrets) {
    const ServerProcess server({"--writable", ""}, {"-s", "my.token=hush"});
    HttpClient client = watcher(server.port(), "my.token");
    EXPECT_EQ(event("my.token", "******"), client.readLineStartingWith("data: "));
    post(server.port(), setMessage("my.token", "more"));
    EXPECT_EQ(event("my.token", "******"), client.readLineStartingWith("data: "));
}

TEST(WatchRoute, MasksKeysThatMatchTheSecretOption) {
    const ServerProcess server({"--secret", "NET.*"}, {"-s", "net.port=80"});
    EXPECT_EQ(event("net.port", "******"),
              watcher(server.port(), "net.port").readLineStartingWith("data: "));
}

TEST(WatchRoute, RequiresAKeyOrAPrefix) {
    const ServerProcess server;
    for (const char* path : {"/watch", "/watch?"}) {
        SCOPED_TRACE(path);
        const HttpResponse response = get(server.port(), path);
        EXPECT_EQ(400, response.status);
        EXPECT_EQ("A key or a prefix must be given, as in /watch?key=net.port",
                  test::errorOf(response.body));
    }
    for (const char* path : {"/watch?Key=a", "/watch?key=a&x=y", "/watch?key=%zz"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(400, get(server.port(), path).status);
    }
}

TEST(WatchRoute, SendsTheValuesOfAllKeysAndPrefixes) {
    const InProcessServer server;
    const auto set = [&](const std::string& key, const std::string& value) {
        server.configuration->set(key, value).get();
    };
    set("a", "1");
    set("net.port", "80");
    HttpClient client = watcher(server.port(), "a&key=b&prefix=net.&prefix=net.p");
    std::set<std::string> first{client.readLineStartingWith("data: "),
                                client.readLineStartingWith("data: ")};
    EXPECT_EQ((std::set<std::string>{event("a", "1"), event("net.port", "80")}), first);
    const char* const keys[] = {"b", "net.host", "net.port"}; // two of them are new
    for (const char* key : keys) {
        SCOPED_TRACE(key);
        set("other", "0");
        set(key, "x");
        EXPECT_EQ(event(key, "x"), client.readLineStartingWith("data: "));
    }
}

TEST(WatchRoute, SendsTheKeysOfASourceThatIsAdded) {
    const InProcessServer server;
    HttpClient client = watcher(server.port(), "x&prefix=net.");
    server.configuration->set("net.a", std::string("1")).get();
    EXPECT_EQ(event("net.a", "1"), client.readLineStartingWith("data: "));
    server.configuration->addInMemorySource("late", "net", 5, true, {{"b", std::string("2")}})
        .get();
    EXPECT_EQ(R"(data: {"key":"net.b","source":"late","value":{"type":"string","value":"2"}})",
              client.readLineStartingWith("data: "));
}

/// @return the id of an event line
std::string idIn(const std::string& line) {
    EXPECT_EQ(0u, line.find("id: "));
    return line.substr(4);
}

HttpClient returning(std::uint16_t port, const std::string& query, const std::string& lastId) {
    HttpClient client(port);
    client.get("/watch?" + query, {"Last-Event-ID: " + lastId});
    EXPECT_EQ("HTTP/1.1 200 OK", client.readLine());
    while (!client.readLine().empty()) {
    }
    return client;
}

TEST(WatchRoute, AClientThatComesBackIsToldOnlyWhatHasChangedSince) {
    const InProcessServer server;
    server.configuration->set("a", std::string("1")).get();
    server.configuration->set("b", std::string("1")).get();
    std::string id;
    {
        HttpClient client = watcher(server.port(), "a&key=b");
        client.readLine();
        client.readLineStartingWith("data: ");
        id = idIn(client.readLineStartingWith("id: "));
    }
    server.configuration->set("b", std::string("2")).get();
    HttpClient client = returning(server.port(), "key=a&key=b", id);
    EXPECT_EQ(event("b", "2"), client.readLineStartingWith("data: "));
    server.configuration->set("a", std::string("2")).get();
    EXPECT_EQ(event("a", "2"), client.readLineStartingWith("data: "));
}

TEST(WatchRoute, AClientThatLeavesAmongTheFirstEventsMissesNone) {
    const InProcessServer server;
    HttpClient first = watcher(server.port(), "z&key=a");
    for (const char* const key : {"z", "a", "z"}) { // so that the ids are not in the order of keys
        server.configuration->set(key, std::string(key)).get();
        first.readLineStartingWith("data: ");
    }
    HttpClient all = watcher(server.port(), "a&key=z");
    const std::string id = idIn(all.readLineStartingWith("id: "));
    const std::string told = all.readLineStartingWith("data: ");
    EXPECT_EQ(event("a", "a"), told);
    HttpClient client = returning(server.port(), "key=a&key=z", id);
    EXPECT_EQ(event("z", "z"), client.readLineStartingWith("data: "));
}

TEST(WatchRoute, AClientThatKnowsEverythingIsToldTheNextChange) {
    const InProcessServer server;
    server.configuration->set("a", std::string("1")).get();
    std::string id;
    {
        HttpClient client = watcher(server.port(), "a");
        id = idIn(client.readLineStartingWith("id: "));
    }
    HttpClient client = returning(server.port(), "key=a", id);
    server.configuration->set("a", std::string("2")).get();
    EXPECT_EQ(event("a", "2"), client.readLineStartingWith("data: "));
}

TEST(WatchRoute, AnIdOfAnotherServerCountsAsNone) {
    const InProcessServer server;
    server.configuration->set("a", std::string("1")).get();
    for (const char* id : {"1", "000000000000-99", "", "x"}) {
        SCOPED_TRACE(id);
        HttpClient client = returning(server.port(), "key=a", id);
        EXPECT_EQ(event("a", "1"), client.readLineStartingWith("data: "));
    }
}

TEST(WatchRoute, AValueIsSentWithTheIdOfItsLastChange) {
    const InProcessServer server;
    server.configuration->set("a", std::string("1")).get();
    HttpClient first = watcher(server.port(), "a");
    const std::string id = idIn(first.readLine());
    HttpClient second = watcher(server.port(), "a");
    EXPECT_EQ(id, idIn(second.readLine()));
}

TEST(WatchRoute, ASlowClientReceivesTheNewestValueInsteadOfABacklog) {
    constexpr int changes = 2000;
    const InProcessServer server;
    HttpClient client = watcher(server.port(), "k", 4096);
    const std::string padding(4096, 'x');
    for (int i = 0; i <= changes; ++i)
        server.configuration->set("k", OptionValue(padding + std::to_string(i))).get();
    int events = 0;
    std::string line;
    do {
        line = client.readLineStartingWith("data: ");
        ASSERT_NE("", line);
        ++events;
    } while (line.find("x" + std::to_string(changes) + '"') == line.npos);
    EXPECT_LT(events, changes / 2);
}

TEST(WatchRoute, AFastClientReceivesEveryValue) {
    const InProcessServer server;
    HttpClient client = watcher(server.port(), "k");
    for (int i = 0; i < 1000; ++i) {
        const std::string value = std::to_string(i);
        server.configuration->set("k", OptionValue(value)).get();
        ASSERT_EQ(event("k", value), client.readLineStartingWith("data: "));
    }
}

TEST(WatchRoute, AValueThatCannotBeSentHidesNoOther) {
    const InProcessServer server;
    server.configuration->set("k1", OptionValue(std::u16string(1, char16_t(0xD800)))).get();
    server.configuration->set("k2", OptionValue(std::string("2"))).get();
    HttpClient client(server.port());
    client.get("/watch?prefix=k");
    EXPECT_EQ(event("k2", "2"), client.readLineStartingWith("data: "));
}

TEST(WatchRoute, SendsALargeValueCompletely) {
    const InProcessServer server;
    HttpClient client = watcher(server.port(), "k");
    const std::string value(1000000, 'x');
    server.configuration->set("k", OptionValue(value)).get();
    EXPECT_EQ(event("k", value), client.readLineStartingWith("data: "));
}

TEST(WatchRoute, SendsCommentsToKeepTheConnectionOpen) {
    HttpLimits limits;
    limits.comment = std::chrono::milliseconds(10);
    const InProcessServer server(limits);
    HttpClient client = watcher(server.port(), "k");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(":", client.readLine());
        EXPECT_EQ("", client.readLine());
    }
    server.configuration->set("k", OptionValue(std::string("1"))).get();
    EXPECT_EQ(event("k", "1"), client.readLineStartingWith("data: "));
}

TEST(WatchRoute, AClientThatDisconnectsMakesRoomForAnother) {
    HttpLimits limits;
    limits.connections = 1;
    const InProcessServer server(limits);
    watcher(server.port(), "k"); // disconnects at once
    std::string line;
    do { // until the server has noticed
        HttpClient next(server.port());
        next.get("/watch?key=k");
        line = next.readLine();
    } while (line.empty());
    EXPECT_EQ("HTTP/1.1 200 OK", line);
}

TEST(WatchRoute, AConnectionBeyondTheLimitIsClosed) {
    HttpLimits limits;
    limits.connections = 2;
    const InProcessServer server(limits);
    HttpClient first = watcher(server.port(), "k");
    HttpClient second = watcher(server.port(), "k");
    EXPECT_EQ(0, get(server.port(), "/watch?key=k").status);
    server.configuration->set("k", OptionValue(std::string("1"))).get();
    EXPECT_EQ(event("k", "1"), first.readLineStartingWith("data: "));
    EXPECT_EQ(event("k", "1"), second.readLineStartingWith("data: "));
}

} // namespace
