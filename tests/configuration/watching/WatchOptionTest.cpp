/// Which values reach the subscribers of an option, and when.
#include "configuration/Answers.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/ScriptedSource.hpp"
#include "support/Expect.hpp"
#include "support/LogCapture.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace {

using test::expectThrows;
using test::makeConfiguration;
using test::RecordingSubscriber;
using test::ScriptedSource;
using test::watch;
using testing::ElementsAre;

TEST(WatchOption, DeliversTheEffectiveValueAtOnce) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    EXPECT_THAT(watch(*configuration, "x")->values(), ElementsAre(1));
}

TEST(WatchOption, HoldsTheValueUntilItIsRequested) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto subscriber = watch(*configuration, "x", nullptr, 0);
    EXPECT_THAT(subscriber->values(), ElementsAre());
    subscriber->request(1);
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
}

TEST(WatchOption, HoldsTheValueUntilASubscription) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto publisher = configuration->watchOption("x");
    configuration->set("x", 2).get();
    const auto subscriber = std::make_shared<RecordingSubscriber>();
    publisher->subscribe(subscriber);
    EXPECT_THAT(subscriber->values(), ElementsAre(2));
}

TEST(WatchOption, KeepsOnlyTheNewestUndeliveredValue) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto subscriber = watch(*configuration, "x", nullptr, 1);
    for (const int value : {2, 3, 4})
        configuration->set("x", value).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
    subscriber->request(5);
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 4));
    configuration->set("x", 5).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 4, 5));
}

TEST(WatchOption, OfAKeyWithoutAValueDeliversTheFirstOne) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    EXPECT_THAT(subscriber->values(), ElementsAre());
    configuration->set("x", 1).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
}

TEST(WatchOption, DeliversBeforeSetReturns) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    auto result = configuration->set("x", 1);
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
}

TEST(WatchOption, DeliversTheSameValueAgain) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    configuration->set("x", 1).get();
    configuration->set("x", 1).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 1));
}

TEST(WatchOption, DeliversTheEffectiveValueWhenAHiddenSourceChanges) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto subscriber = watch(*configuration, "x");
    configuration->set("x", 2, "default").get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 1));
}

TEST(WatchOption, DeliversTheEffectiveValueWhenAHiddenSourceIsAdded) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto subscriber = watch(*configuration, "x");
    configuration->addInMemorySource("hidden", "", 5, false, {{"x", 2}}).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 1));
}

TEST(WatchOption, DeliversTheValueOfAnAddedSourceThatIsConsultedFirst) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto subscriber = watch(*configuration, "x");
    configuration->addInMemorySource("first", "", -1, true, {{"x", 2}}).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2));
}

TEST(WatchOption, IsNotNotifiedOfASourceWithoutTheKey) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto subscriber = watch(*configuration, "x");
    configuration->addInMemorySource("other", "", -1, false, {{"y", 2}}).get();
    configuration->removeSource("other").get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
}

TEST(WatchOption, FollowsOnlyItsOwnKey) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    for (const std::string key : {"X", "x.", "xx", "", "net.x"})
        configuration->set(key, 1).get();
    configuration->set(std::string("x\0", 2), 1).get();
    EXPECT_THAT(subscriber->values(), ElementsAre());
}

TEST(WatchOption, FollowsTheKeyWithItsGroup) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("net", "net", -1, false, {{"port", 80}}).get();
    const auto prefixed = watch(*configuration, "net.port");
    const auto bare = watch(*configuration, "port");
    configuration->set("net.port", 81).get();
    EXPECT_THAT(prefixed->values(), ElementsAre(80, 81));
    EXPECT_THAT(bare->values(), ElementsAre());
}

TEST(WatchOption, CreatesANewStreamEachTime) {
    const auto configuration = makeConfiguration();
    EXPECT_NE(configuration->watchOption("x"), configuration->watchOption("x"));
    const auto first = watch(*configuration, "x");
    const auto second = watch(*configuration, "x");
    configuration->set("x", 1).get();
    configuration->set("x", 2).get();
    EXPECT_THAT(first->values(), ElementsAre(1, 2));
    EXPECT_THAT(second->values(), ElementsAre(1, 2));
}

TEST(WatchOption, NotifiesStreamsInTheOrderOfTheirCreation) {
    const auto configuration = makeConfiguration();
    std::vector<int> order;
    for (int i = 0; i < 5; ++i)
        watch(*configuration, "x", [&order, i](int) { order.push_back(i); });
    configuration->set("x", 1).get();
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4));
}

TEST(WatchOption, KeepsTheOrderOfTheOthersWhenAStreamEnds) {
    const auto configuration = makeConfiguration();
    std::vector<int> order;
    std::vector<std::shared_ptr<RecordingSubscriber>> subscribers;
    for (int i = 0; i < 5; ++i)
        subscribers.push_back(watch(*configuration, "x", [&order, i](int) { order.push_back(i); }));
    subscribers[1]->cancel();
    subscribers[3]->cancel();
    configuration->set("x", 1).get();
    EXPECT_THAT(order, ElementsAre(0, 2, 4));
}

TEST(WatchOption, NumbersItsStreamsFromZero) {
    const auto configuration = makeConfiguration();
    const auto first = watch(*configuration, "x");
    const auto second = watch(*configuration, "y");
    configuration->removeStream(0);
    EXPECT_EQ(1, first->completions());
    EXPECT_EQ(0, second->completions());
    configuration->removeStream(1);
    EXPECT_EQ(1, second->completions());
}

TEST(WatchOption, NeverReusesAStreamId) {
    const auto configuration = makeConfiguration();
    watch(*configuration, "x")->cancel();
    const auto second = watch(*configuration, "x");
    configuration->removeStream(0);
    EXPECT_EQ(0, second->completions());
    configuration->removeStream(1);
    EXPECT_EQ(1, second->completions());
}

TEST(WatchOption, OnTheStackThrows) {
    connector::configuration::ConfigurationImpl configuration;
    EXPECT_THROW(configuration.watchOption("x"), std::bad_weak_ptr);
    EXPECT_TRUE(test::mutexIsFree(configuration));
}

TEST(WatchOption, ThatThrowsConsumesAnId) {
    auto* const ownerless = new connector::configuration::ConfigurationImpl;
    EXPECT_THROW(ownerless->watchOption("x"), std::bad_weak_ptr);
    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration(ownerless);
    const auto subscriber = watch(*configuration, "x");
    configuration->removeStream(0);
    EXPECT_EQ(0, subscriber->completions());
    configuration->removeStream(1);
    EXPECT_EQ(1, subscriber->completions());
}

TEST(WatchOption, ThrowsWhatASourceThrowsAndLeavesTheStreamRegistered) {
    test::Journal journal;
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<ScriptedSource>(journal, "a");
    configuration->addSource("a", "", -1, false, source).get();
    source->onHas = [](const std::string&) { throw std::range_error("no answer"); };
    expectThrows<std::range_error>("no answer", [&] { configuration->watchOption("x"); });
    source->onHas = nullptr;
    EXPECT_TRUE(test::mutexIsFree(*configuration));

    const test::CoreLog log; // nothing else shows the stream: no pointer to it exists
    configuration->set("x", 1).get();
    configuration->removeStream(0);
    configuration->set("x", 2).get();
    EXPECT_THAT(log.lines(), testing::Contains("notifying watcher: x").Times(1));
}

TEST(WatchOption, AsksTwiceForTheKeyAndThenForTheValue) {
    test::Journal journal;
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<ScriptedSource>(
        journal, "a", std::map<std::string, ScriptedSource::OptionValue>{{"x", 1}});
    configuration->addSource("a", "", -1, false, source).get();
    journal.clear();
    configuration->watchOption("x");
    EXPECT_THAT(journal, ElementsAre("a has x", "a has x", "a get x"));
}

TEST(WatchOption, LooksUpAReportedKeyOnceForAllSubscribers) {
    test::Journal journal;
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<ScriptedSource>(
        journal, "a", std::map<std::string, ScriptedSource::OptionValue>{{"x", 1}});
    configuration->addSource("a", "", -1, false, source).get();
    const auto first = watch(*configuration, "x");
    const auto second = watch(*configuration, "x");
    journal.clear();
    source->report("x");
    EXPECT_THAT(journal, ElementsAre("a has x", "a has x", "a get x"));
    source->report("another key");
    EXPECT_THAT(first->values(), ElementsAre(1, 1));
    EXPECT_THAT(second->values(), ElementsAre(1, 1));
}

TEST(WatchOption, DeliversNothingForAReportedKeyWithoutAValue) {
    test::Journal journal;
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<ScriptedSource>(
        journal, "a", std::map<std::string, ScriptedSource::OptionValue>{{"x", 1}});
    configuration->addSource("a", "", -1, false, source).get();
    const auto subscriber = watch(*configuration, "x");
    source->values.clear();
    source->report("x");
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
    EXPECT_EQ(0, subscriber->completions());
}

} // namespace
