// Histories that do not continue: compaction, a wiped data folder, another cluster.
#include "Load.hpp"

namespace {

using namespace test;

class HistoryTest : public testing::Test {
protected:
    HistoryTest() {
        client.put(prefix + "a", "first");
        source = sourceOf(proxy.endpoint());
        observer.emplace(*source);
    }

    void cutOff() {
        proxy.refuse();
        ASSERT_TRUE(observer->waitFor(State::Stale));
    }

    void reconnect() {
        proxy.pass();
        ASSERT_TRUE(observer->waitFor(State::Current));
        EXPECT_TRUE(agrees(*source, client));
    }

    void wipe() {
        server.kill();
        server.wipe();
        server.restart();
        server.waitUntilReady();
    }

    EtcdServer server;
    Client client{server.endpoint()};
    Proxy proxy{server.port()};
    std::shared_ptr<EtcdSource> source;
    std::optional<Observer> observer;
};

TEST_F(HistoryTest, ThatContinuesIsNotListedAgain) {
    cutOff();
    client.put(prefix + "b", "second");
    client.erase(prefix + "a");
    client.put("other", "beyond the prefix");
    reconnect();
    EXPECT_EQ(1u, source->status().lists);
    EXPECT_EQ(2u, source->status().watches);
}

TEST_F(HistoryTest, OfErasedKeysIsNotListedAgain) {
    ASSERT_TRUE(source->waitFor(client.erase(prefix + "a"), 30s));
    cutOff();
    reconnect();
    EXPECT_EQ(1u, source->status().lists);
}

TEST_F(HistoryTest, ThatIsCompactedIsListedAgainAndTheDifferenceTold) {
    client.put(prefix + "same", "same");
    ASSERT_TRUE(source->waitFor(client.put(prefix + "gone", "gone"), 30s));
    cutOff();
    client.erase(prefix + "gone");
    client.put(prefix + "a", "second");
    const std::int64_t last = client.put(prefix + "new", "new");
    server.control("compact " + std::to_string(last));
    std::vector<std::string> told;
    source->setWatcher([&](const std::string& key) { told.push_back(key); });
    reconnect();
    ASSERT_TRUE(source->waitFor(last, 30s));
    source->setWatcher({});
    EXPECT_EQ((std::vector<std::string>{"a", "gone", "new"}), told);
    EXPECT_EQ(2u, source->status().lists);
}

TEST_F(HistoryTest, ThatIsCompactedKeepsTheLastGoodValues) {
    ASSERT_TRUE(source->waitFor(client.put(prefix + "b", "good"), 30s));
    cutOff();
    client.put(prefix + "b", "\xFF");
    server.control("compact " + std::to_string(client.put(prefix + "c", "1")));
    proxy.pass();
    ASSERT_TRUE(eventually([&] { return source->status().lists == 2; }));
    ASSERT_TRUE(observer->waitFor(State::Current));
    EXPECT_EQ("good", textOf(*source, "b"));
    EXPECT_EQ(std::vector<std::string>{"b"}, source->status().unreadable);
}

TEST_F(HistoryTest, OfAWipedFolderIsListedAgain) {
    for (int i = 0; i < 20; ++i)
        client.put(prefix + "old." + std::to_string(i), "old");
    cutOff();
    wipe();
    client.put(prefix + "new", "new");
    reconnect();
    EXPECT_EQ((std::map<std::string, std::string>{{"new", "new"}}), textsOf(*source));
    EXPECT_EQ(2u, source->status().lists);
}

TEST_F(HistoryTest, OfAWipedFolderThatHasMoreRevisionsIsListedAgain) {
    cutOff();
    wipe(); // the new cluster has the same id, because name and address are the same
    for (int i = 0; i < 20; ++i)
        client.put(prefix + "new." + std::to_string(i), "new");
    reconnect();
    EXPECT_EQ(20u, source->table()->size());
    EXPECT_EQ(2u, source->status().lists);
}

TEST_F(HistoryTest, OfAWipedFolderWithTheSameKeysIsListedAgain) {
    cutOff();
    wipe();
    client.put(prefix + "a", "another first");
    client.put(prefix + "b", "second");
    reconnect();
    EXPECT_EQ("another first", textOf(*source, "a"));
    EXPECT_EQ(2u, source->status().lists);
}

TEST_F(HistoryTest, OfAnotherClusterAtTheSameAddressIsListedAgain) {
    const EtcdServer other({"--initial-cluster-token=another"});
    Client otherClient(other.endpoint());
    for (int i = 0; i < 20; ++i)
        otherClient.put(prefix + "other." + std::to_string(i), "other");
    const std::uint64_t before = source->status().clusterId;
    cutOff();
    proxy.redirect(other.port());
    proxy.pass();
    ASSERT_TRUE(observer->waitFor(State::Current));
    EXPECT_TRUE(agrees(*source, otherClient));
    EXPECT_NE(before, source->status().clusterId);
}

TEST(WipedFolderTest, NeverShowsAMixture) {
    Moments moments;
    EtcdServer server;
    const auto source = sourceOf(server.endpoint());
    Reader reader(*source);
    int number = 1;
    for (int round = 0; round < 3; ++round) {
        Writer writer(server.endpoint(), number);
        ASSERT_TRUE(writer.writesMore(1 + moments.below(40)));
        writer.stop();
        number = writer.next();
        Client client(server.endpoint());
        ASSERT_TRUE(agrees(*source, client));
        server.kill();
        server.wipe();
        server.restart();
        server.waitUntilReady();
    }
    EXPECT_EQ("", reader.wrong());
}

} // namespace
