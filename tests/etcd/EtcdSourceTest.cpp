// What a source shows of the keys of the engine, and what it says about it.
#include "Fixture.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <future>
#include <set>

namespace {

using namespace test;
using connector::configuration::ConfigurationImpl;

class EtcdSourceTest : public testing::Test {
protected:
    EtcdServer server;
    Client client{server.endpoint()};
};

TEST_F(EtcdSourceTest, ShowsTheKeysBelowThePrefix) {
    client.put(prefix + "log.level", "debug");
    client.put(prefix + "net.port", R"({"type":"int","value":8080})");
    client.put("other/key", "no");
    const auto source = sourceOf(server.endpoint());
    const auto table = source->table();
    EXPECT_EQ(2u, table->size());
    EXPECT_EQ(OptionValue(std::string("debug")), table->at("log.level"));
    EXPECT_EQ(OptionValue(8080), table->at("net.port"));
}

TEST_F(EtcdSourceTest, TellsChangesToTheConfiguration) {
    const auto source = sourceOf(server.endpoint());
    const auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->addSource("fleet", "", 60, true, source).get();
    EXPECT_THROW(configuration->get("a").get(), std::runtime_error);
    ASSERT_TRUE(source->waitFor(client.put(prefix + "a", "1"), 30s));
    EXPECT_EQ(OptionValue(std::string("1")), configuration->get("a").get());
    ASSERT_TRUE(source->waitFor(client.put(prefix + "a", "2"), 30s));
    EXPECT_EQ(OptionValue(std::string("2")), configuration->get("a").get());
    ASSERT_TRUE(source->waitFor(client.erase(prefix + "a"), 30s));
    EXPECT_FALSE(configuration->has("a").get());
}

TEST_F(EtcdSourceTest, RefusesToBeSetThroughTheConfiguration) {
    const auto source = sourceOf(server.endpoint());
    EXPECT_THROW(source->set("a", 1), std::runtime_error);
}

TEST_F(EtcdSourceTest, IgnoresAndCountsKeysThatNoOptionCanHave) {
    client.put(prefix, "the empty key");
    client.put(prefix + "\xC3", "half of a character");
    client.put(prefix + "good", "1");
    const auto source = sourceOf(server.endpoint());
    EXPECT_EQ(1u, source->table()->size());
    EXPECT_EQ(2u, source->status().ignoredKeys);
    client.put(prefix + "\xFE", "1");
    ASSERT_TRUE(source->waitFor(client.put(prefix + "next", "1"), 30s));
    EXPECT_EQ(2u, source->table()->size());
    EXPECT_EQ(3u, source->status().ignoredKeys);
}

TEST_F(EtcdSourceTest, KeepsTheLastGoodValueOfAKeyThatBecomesUnreadable) {
    client.put(prefix + "a", R"({"type":"int","value":1})");
    const auto source = sourceOf(server.endpoint());
    client.put(prefix + "a", R"({"type":"int","value":"nonsense"})");
    client.put(prefix + "b", "\xFF");
    ASSERT_TRUE(source->waitFor(client.put(prefix + "c", "1"), 30s));
    EXPECT_EQ(OptionValue(1), source->table()->at("a"));
    EXPECT_EQ(0u, source->table()->count("b"));
    EXPECT_EQ("1", textOf(*source, "c"));
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), source->status().unreadable);
    client.put(prefix + "a", "good");
    ASSERT_TRUE(source->waitFor(client.erase(prefix + "b"), 30s));
    EXPECT_EQ("good", textOf(*source, "a"));
    EXPECT_TRUE(source->status().unreadable.empty());
}

TEST_F(EtcdSourceTest, ListsMoreKeysThanOnePageHolds) {
    Client::Pairs changes;
    for (int i = 0; i < 2'500; ++i) {
        changes.emplace_back(prefix + "key." + std::to_string(i), std::to_string(i));
        if (changes.size() == 100)
            client.write(std::exchange(changes, {}));
    }
    const auto source = sourceOf(server.endpoint());
    EXPECT_EQ(2'500u, source->table()->size());
    EXPECT_EQ(client.list(prefix).values, textsOf(*source));
    EXPECT_EQ(1u, source->status().lists);
}

TEST_F(EtcdSourceTest, TellsALargeTransactionAsOneChange) {
    const auto source = sourceOf(server.endpoint());
    std::set<std::size_t> sizes;
    source->setWatcher([&](const std::string&) { sizes.insert(source->table()->size()); });
    Client::Pairs changes;
    for (int i = 0; i < 100; ++i) // more than a megabyte
        changes.emplace_back(prefix + "key." + std::to_string(i), std::string(12'000, 'x'));
    ASSERT_TRUE(source->waitFor(client.write(changes), 30s));
    source->setWatcher({});
    EXPECT_EQ(std::set<std::size_t>{100}, sizes);
}

TEST_F(EtcdSourceTest, ReportsItsState) {
    const auto source = sourceOf(server.endpoint());
    Observer observer(*source);
    EXPECT_TRUE(observer.waitFor(State::Current));
    const Status status = source->status();
    EXPECT_EQ(1u, status.lists);
    EXPECT_EQ(1u, status.watches);
    EXPECT_NE(0u, status.clusterId);
    EXPECT_EQ("", status.failure);
    server.kill();
    EXPECT_TRUE(observer.waitFor(State::Stale));
    EXPECT_NE(std::string::npos, source->status().failure.find(server.endpoint()));
    source->stop();
    EXPECT_TRUE(observer.waitFor(State::Stopped));
}

TEST_F(EtcdSourceTest, PassesWhatAWatcherThrowsToTheErrorHandler) {
    const auto source = sourceOf(server.endpoint());
    std::promise<std::string> text;
    source->onError([&](const std::exception_ptr& error) {
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& thrown) {
            text.set_value(thrown.what());
        }
        throw std::runtime_error("dropped");
    });
    source->setWatcher([](const std::string& key) { throw std::runtime_error("told " + key); });
    client.put(prefix + "a", "1");
    EXPECT_EQ("told a", text.get_future().get());
    source->setWatcher({});
    EXPECT_TRUE(source->waitFor(client.put(prefix + "a", "2"), 30s));
}

TEST_F(EtcdSourceTest, ASlowWatcherGetsTheNewestValueOfEachKey) {
    const auto source = sourceOf(server.endpoint());
    std::promise<void> entered;
    std::promise<void> released;
    std::vector<std::string> told;
    source->setWatcher([&](const std::string& key) {
        told.push_back(key + '=' + textOf(*source, key));
        if (told.size() == 1) {
            entered.set_value();
            released.get_future().wait();
        }
    });
    client.put(prefix + "a", "0");
    entered.get_future().wait();
    std::int64_t last = 0;
    for (int i = 1; i <= 500; ++i) {
        client.put(prefix + "a", std::to_string(i));
        last = client.put(prefix + "b", std::to_string(i));
    }
    ASSERT_TRUE(eventually([&] { return source->status().changes == 1'001; }));
    released.set_value();
    ASSERT_TRUE(source->waitFor(last, 30s));
    source->setWatcher({});
    EXPECT_EQ((std::vector<std::string>{"a=0", "a=500", "b=500"}), told);
}

} // namespace
