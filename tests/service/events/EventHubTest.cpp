/// Which keys the values of watched options are kept for.
#include <connector/service/events/EventHub.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <boost/asio/io_context.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::service::Event;
using connector::service::EventHub;
using connector::service::EventSession;
using connector::service::Secrets;
using connector::service::WatchedKeys;
using connector::service::Workers;

class EventHubTest : public testing::Test {
protected:
    using Session = std::unique_ptr<EventSession>;

    EventHubTest() {
        workers.start(1);
        workers.resume();
        hub.start();
    }

    ~EventHubTest() override {
        workers.stop();
        hub.close();
    }

    Session open(const std::vector<std::string>& keys, const std::vector<std::string>& prefixes) {
        return hub.open({keys, prefixes}, "", [] {});
    }

    /// Waits for the next event, which is then being sent.
    std::string begin(EventSession& session) {
        std::optional<Event> event;
        while (!(event = session.next()))
            io.run_one();
        return *event->text;
    }

    /// Waits for the next event, and sends it.
    std::string next(EventSession& session) {
        const std::string text = begin(session);
        session.sent();
        return text;
    }

    void set(const std::string& key, int value) { configuration.set(key, value).get(); }
    void reset(const std::string& key) { configuration.reset(key).get(); }

    static std::string textOf(const std::string& key, int value) {
        return "data: {\"key\":\"" + key +
               "\",\"source\":\"override\",\"value\":{\"type\":\"int\"," +
               "\"value\":" + std::to_string(value) + "}}\n\n";
    }

    ConfigurationImpl configuration;
    const Secrets secrets{{}};
    boost::asio::io_context io{1};
    Workers workers{io};
    EventHub hub{io, configuration, secrets, workers};
};

TEST_F(EventHubTest, ForgetsKeysThatAreGone) {
    const Session session = open({}, {"k"});
    for (int i = 0; i < 100; ++i) {
        const std::string key = "k" + std::to_string(i);
        set(key, i);
        EXPECT_EQ(textOf(key, i), next(*session));
        reset(key);
    }
    set("kz", 1);
    EXPECT_EQ(textOf("kz", 1), next(*session));
    EXPECT_EQ(1u, hub.topicCount());
}

TEST_F(EventHubTest, ForgetsAKeyThatGoesWhileItsEventIsSent) {
    const Session session = open({}, {"k"});
    set("k1", 1);
    EXPECT_EQ(textOf("k1", 1), begin(*session));
    reset("k1");
    const Session other = open({}, {"k"});
    set("k2", 2);
    EXPECT_EQ(textOf("k2", 2), next(*other)); // the removal has been read before
    session->sent();
    EXPECT_EQ(1u, hub.topicCount());
    EXPECT_EQ(textOf("k2", 2), next(*session));
}

TEST_F(EventHubTest, KeepsAnAbsentKeyForAsLongAsAClientNamesIt) {
    Session first = open({"k1", "k1"}, {"k"});
    Session second = open({"k1"}, {});
    const Session other = open({"other"}, {});
    set("other", 2);
    EXPECT_EQ(textOf("other", 2), next(*other)); // the absence has been read before
    EXPECT_EQ(2u, hub.topicCount());
    first.reset();
    EXPECT_EQ(2u, hub.topicCount());
    second.reset();
    EXPECT_EQ(1u, hub.topicCount());
}

TEST(Prefixes, ThatBeginWithAnotherOneAreLeftOut) {
    using connector::service::outermost;
    using Texts = std::vector<std::string>;
    EXPECT_EQ(Texts(), outermost({}));
    EXPECT_EQ(Texts{""}, outermost({"b", "", "a", ""}));
    EXPECT_EQ((Texts{"a", "b.c", "b\xff"}),
              outermost({"b.c", "ab", "b.c.d", "b\xff", "a", "b.cd"}));
}

TEST_F(EventHubTest, TellsTheKeysOfSeveralPrefixesOnce) {
    for (const char* const key : {"", "a", "ab", "b", "b.c", "b.cd", "b\xff", "c"})
        set(key, 1);
    const Session session = open({"c"}, {"b.c", "b.c.d", "ab", "a", "b\xff"});
    std::set<std::string> told;
    for (int i = 0; i < 6; ++i)
        told.insert(next(*session));
    EXPECT_EQ(
        (std::set<std::string>{textOf("a", 1), textOf("ab", 1), textOf("b.c", 1), textOf("b.cd", 1),
                               textOf("b\xEF\xBF\xBD", 1), textOf("c", 1)}),
        told);
    set("b", 2);
    set("b.d", 2);
    set("a", 2);
    EXPECT_EQ(textOf("a", 2), next(*session));
}

TEST_F(EventHubTest, TellsAKeyThatComesBack) {
    const Session byPrefix = open({}, {"k", "k1"});
    const Session byBoth = open({"k1", "k1"}, {"k"});
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        set("k1", i);
        EXPECT_EQ(textOf("k1", i), next(*byPrefix));
        EXPECT_EQ(textOf("k1", i), next(*byBoth));
        reset("k1");
        set("k2", i);
        EXPECT_EQ(textOf("k2", i), next(*byPrefix));
        EXPECT_EQ(textOf("k2", i), next(*byBoth));
    }
}

} // namespace
