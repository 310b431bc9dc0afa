/// --etcd for watch and serve
#include "Fleet.hpp"

#include "service/support/ServerProcess.hpp"

#include <csignal>
#include <regex>
#include <string>
#include <vector>

namespace {

using test::Result;
using test::runConnectorConfig;

class FollowingTest : public test::Fleet {
protected:
    void expectStale(const std::string& line, const std::string& name = "etcd") const {
        const std::regex expected(
            name + ": stale since [0-2][0-9]:[0-5][0-9]:[0-6][0-9]: " + server.endpoint() + ": .+");
        EXPECT_TRUE(std::regex_match(line, expected)) << line;
    }

    void restartServer() {
        server.restart();
        server.waitUntilReady();
    }

    /// The first time that a source is current is not told, so it must be over when the server
    /// ends. A source is current before it has the first change, and has said so before it has the
    /// second.
    const std::vector<std::string> twoChanges{"1", "2"};
};

TEST_F(FollowingTest, WatchPrintsTheChangesOfThePrefix) {
    put("a", "1");
    test::Process watch(test::connectorConfig({"--etcd", etcd(), "watch", "a", "b"}));
    EXPECT_EQ("connector-config: No value yet: b", watch.readErrorLine());
    EXPECT_EQ("a = 1  (etcd)", watch.readLine());
    put("a", R"({"type":"int","value":2})");
    EXPECT_EQ("a = 2  (etcd)", watch.readLine());
    put("b", "3");
    EXPECT_EQ("b = 3  (etcd)", watch.readLine());
    watch.write("set a=4\n");
    EXPECT_EQ("a = 4  (override)", watch.readLine());
    watch.write("remove override\n");
    EXPECT_EQ("a = 2  (etcd)", watch.readLine());
    watch.write("remove etcd\nquit\n");
    EXPECT_EQ((Result{0, "", ""}), watch.finish());
}

TEST_F(FollowingTest, WatchTellsThatTheSourceIsStaleAndCurrentAgain) {
    put("a", "0");
    test::Process watch(test::connectorConfig({"--etcd", etcd(",name=fleet"), "watch", "a"}));
    EXPECT_EQ("a = 0  (fleet)", watch.readLine());
    for (const std::string& value : twoChanges) {
        put("a", value);
        EXPECT_EQ("a = " + value + "  (fleet)", watch.readLine());
    }
    server.kill();
    expectStale(watch.readErrorLine(), "fleet");
    restartServer();
    EXPECT_EQ("fleet: current at revision 4", watch.readErrorLine());
    put("a", "3");
    EXPECT_EQ("a = 3  (fleet)", watch.readLine());
    watch.write("quit\n");
    EXPECT_EQ((Result{0, "", ""}), watch.finish());
}

TEST_F(FollowingTest, WatchBeginsWithoutAnEngine) {
    server.kill();
    test::Process watch(test::connectorConfig({"--etcd", etcd(",start=empty"), "watch", "a"}));
    expectStale([&] { // either line may come first
        const std::string line = watch.readErrorLine();
        return line == "connector-config: No value yet: a" ? watch.readErrorLine() : line;
    }());
    restartServer();
    put("a", "1");
    EXPECT_EQ("a = 1  (etcd)", watch.readLine());
}

TEST_F(FollowingTest, ServeTellsThatTheSourceIsStaleAndCurrentAgain) {
    put("a", "0");
    test::Process serve(test::connectorConfig({"--etcd", etcd(), "serve"}));
    const std::string request =
        R"({"id":1,"type":"connector/configuration/ConfigurationGet","message":{"key":"a"}})"
        "\n";
    const auto answers = [&](const std::string& value) {
        serve.write(request);
        return serve.readLine().find(R"("value":")" + value + '"') != std::string::npos;
    };
    EXPECT_TRUE(answers("0"));
    for (const std::string& value : twoChanges) {
        put("a", value);
        while (!answers(value)) {
        }
    }
    server.kill();
    expectStale(serve.readErrorLine());
    restartServer();
    EXPECT_EQ("etcd: current at revision 4", serve.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), serve.finish());
}

TEST_F(FollowingTest, ServeOverHttpFollowsThePrefixAndStops) {
    put("a", "1");
    test::ServerProcess service({}, {"--etcd", etcd()});
    const std::string url = "http://" + service.host() + ':' + std::to_string(service.port());
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"--url", url, "get", "a"}));
    test::Process watch(test::connectorConfig({"--url", url, "watch", "a"}));
    EXPECT_EQ("a = 1  (etcd)", watch.readLine());
    put("a", "2");
    EXPECT_EQ("a = 2  (etcd)", watch.readLine());
    watch.signal(SIGTERM);
    watch.finish();
    server.kill();
    expectStale(service.process().readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), service.stop());
}

TEST_F(FollowingTest, SignalsReachTheProgram) {
    test::Process watch(test::connectorConfig({"--etcd", etcd(), "watch", "a"}));
    EXPECT_EQ("connector-config: No value yet: a", watch.readErrorLine());
    watch.signal(SIGTERM);
    EXPECT_EQ((Result{128 + SIGTERM, "", ""}), watch.finish());
}

} // namespace
