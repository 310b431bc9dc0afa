/// How the stream of a watched option ends, and what may outlive what.
#include "configuration/Answers.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/ScriptedSource.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using test::makeConfiguration;
using test::RecordingSubscriber;
using test::watch;
using testing::ElementsAre;

TEST(WatchEnd, CancellingDoesNotAffectOtherStreams) {
    const auto configuration = makeConfiguration();
    const auto cancelled = watch(*configuration, "x");
    const auto other = watch(*configuration, "x");
    configuration->set("x", 1).get();
    cancelled->cancel();
    configuration->set("x", 2).get();
    EXPECT_THAT(cancelled->values(), ElementsAre(1));
    EXPECT_THAT(other->values(), ElementsAre(1, 2));
}

TEST(WatchEnd, CancellingRemovesTheStream) {
    const auto configuration = makeConfiguration();
    const auto publisher = configuration->watchOption("x");
    const auto subscriber = std::make_shared<RecordingSubscriber>();
    publisher->subscribe(subscriber);
    EXPECT_GT(publisher.use_count(), 1);
    subscriber->cancel();
    EXPECT_EQ(1, publisher.use_count());
    EXPECT_FALSE(publisher->completionFuture().get());
    EXPECT_EQ(0, subscriber->completions());
}

TEST(WatchEnd, CancellingReleasesTheSubscriber) {
    const auto configuration = makeConfiguration();
    auto subscriber = watch(*configuration, "x");
    subscriber->cancel();
    EXPECT_EQ(1, subscriber.use_count());
}

TEST(WatchEnd, CancellingOneOfTwoStreamsKeepsTheOther) {
    const auto configuration = makeConfiguration();
    const auto cancelled = watch(*configuration, "x");
    const auto other = configuration->watchOption("x");
    cancelled->cancel();
    EXPECT_GT(other.use_count(), 1);
}

TEST(WatchEnd, CancellingManyStreamsKeepsTheOrderOfTheOthers) {
    const auto configuration = makeConfiguration();
    std::vector<int> served;
    std::map<int, std::shared_ptr<RecordingSubscriber>> subscribers;
    const auto addSubscriber = [&](int number) {
        subscribers[number] =
            watch(*configuration, "x", [&served, number](int) { served.push_back(number); });
    };
    const auto expectAllServed = [&] {
        std::vector<int> numbers;
        for (const auto& [number, subscriber] : subscribers)
            numbers.push_back(number);
        served.clear();
        configuration->set("x", 1).get();
        EXPECT_EQ(numbers, served);
    };
    int next = 0;
    while (next < 16)
        addSubscriber(next++);
    for (const int number : {0, 1, 2, 15, 7, 8, 6, 3, 14, 4, 5, 9, 13, 10, 12, 11}) {
        SCOPED_TRACE(number);
        subscribers.at(number)->cancel();
        subscribers.erase(number);
        addSubscriber(next++);
        expectAllServed();
    }
    while (!subscribers.empty()) {
        subscribers.begin()->second->cancel();
        subscribers.erase(subscribers.begin());
        expectAllServed();
    }
}

TEST(RemoveStream, OfACancelledStreamDoesNothing) {
    const auto configuration = makeConfiguration();
    const auto cancelled = watch(*configuration, "x");
    const auto other = watch(*configuration, "x");
    cancelled->cancel();
    configuration->removeStream(0);
    configuration->set("x", 1).get();
    EXPECT_EQ(0, cancelled->completions());
    EXPECT_THAT(other->values(), ElementsAre(1));
}

TEST(RemoveStream, OfAnUnknownIdDoesNothing) {
    const auto configuration = makeConfiguration();
    configuration->removeStream(0);
    const auto subscriber = watch(*configuration, "x");
    configuration->removeStream(1);
    configuration->removeStream(std::numeric_limits<std::uint64_t>::max());
    configuration->set("x", 1).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
}

TEST(RemoveStream, CompletesAStreamWithoutAnotherOwner) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    configuration->removeStream(0);
    EXPECT_EQ(1, subscriber->completions());
    configuration->set("x", 1).get();
    EXPECT_THAT(subscriber->values(), ElementsAre());
}

TEST(RemoveStream, LeavesAStreamWithAnotherOwnerOpenButWithoutValues) {
    const auto configuration = makeConfiguration();
    const auto publisher = configuration->watchOption("x");
    const auto subscriber = std::make_shared<RecordingSubscriber>();
    publisher->subscribe(subscriber);
    configuration->removeStream(0);
    configuration->set("x", 1).get();
    EXPECT_EQ(1, publisher.use_count());
    EXPECT_EQ(0, subscriber->completions());
    EXPECT_THAT(subscriber->values(), ElementsAre());
}

TEST(WatchEnd, DestructionCompletesTheStreamsInTheOrderOfTheirCreation) {
    auto configuration = makeConfiguration();
    std::vector<std::string> order;
    const auto add = [&](const std::string& key, const std::string& name) {
        watch(*configuration, key)->inOnComplete = [&order, name] { order.push_back(name); };
    };
    add("x", "first");
    add("y", "second");
    add("x", "third");
    add("a", "fourth");
    configuration.reset();
    EXPECT_THAT(order, ElementsAre("first", "second", "third", "fourth"));
}

TEST(WatchEnd, DestructionResolvesTheCompletionWithTrue) {
    auto configuration = makeConfiguration();
    auto completion = configuration->watchOption("x")->completionFuture();
    configuration.reset();
    EXPECT_TRUE(completion.get());
}

TEST(WatchEnd, DestructionDoesNotCompleteAPublisherThatOutlivesIt) {
    auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto publisher = configuration->watchOption("x");
    configuration.reset();
    const auto subscriber = std::make_shared<RecordingSubscriber>();
    publisher->subscribe(subscriber);
    EXPECT_THAT(subscriber->values(), ElementsAre(1)); // still usable
    EXPECT_EQ(0, subscriber->completions());
    EXPECT_EQ(1, publisher.use_count());
}

TEST(WatchEnd, CancellingAfterTheDestructionIsHarmless) {
    auto configuration = makeConfiguration();
    auto cancelled = configuration->watchOption("x");
    auto dropped = configuration->watchOption("x");
    const auto canceller = std::make_shared<RecordingSubscriber>();
    const auto other = std::make_shared<RecordingSubscriber>();
    cancelled->subscribe(canceller);
    dropped->subscribe(other);
    configuration.reset();
    canceller->cancel();
    EXPECT_FALSE(cancelled->completionFuture().get());
    dropped.reset();
    EXPECT_EQ(1, other->completions());
}

TEST(WatchEnd, DroppingAPublisherEarlyIsHarmless) {
    const auto configuration = makeConfiguration();
    auto publisher = configuration->watchOption("x");
    configuration->removeStream(0);
    publisher.reset();
    configuration->set("x", 1).get();
    EXPECT_EQ(1, test::intOf(*configuration, "x"));
}

TEST(WatchOption, DoesNotKeepTheConfigurationAlive) {
    auto configuration = makeConfiguration();
    const auto publisher = configuration->watchOption("x");
    const auto subscriber = std::make_shared<RecordingSubscriber>();
    publisher->subscribe(subscriber);
    const std::weak_ptr<ConfigurationImpl> observer = configuration;
    EXPECT_EQ(1, configuration.use_count());
    configuration.reset();
    EXPECT_TRUE(observer.expired());
}

TEST(WatchOption, IsKeptAliveByTheConfiguration) {
    const auto configuration = makeConfiguration();
    const std::weak_ptr<ConfigurationImpl::OptionPublisher> observer =
        configuration->watchOption("x");
    EXPECT_FALSE(observer.expired());
    configuration->removeStream(0);
    EXPECT_TRUE(observer.expired());
}

} // namespace
