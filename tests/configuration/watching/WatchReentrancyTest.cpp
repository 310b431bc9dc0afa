/// Subscribers that call the configuration, and whether the mutex is held during notifications.
#include "configuration/Answers.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/ScriptedSource.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using connector::configuration::OptionValue;
using test::has;
using test::intOf;
using test::Journal;
using test::makeConfiguration;
using test::MutexProbe;
using test::RecordingSubscriber;
using test::ScriptedSource;
using test::sourcesOf;
using test::watch;
using testing::ElementsAre;

TEST(WatchReentrancy, ASubscriberSeesTheNewValueInTheConfiguration) {
    const auto configuration = makeConfiguration();
    int seen = 0;
    watch(*configuration, "x", [&](int) { seen = intOf(*configuration, "x"); });
    configuration->set("x", 1).get();
    EXPECT_EQ(1, seen);
}

TEST(WatchReentrancy, ASubscriberMaySetAnotherOption) {
    const auto configuration = makeConfiguration();
    const auto other = watch(*configuration, "y");
    watch(*configuration, "x", [&](int value) { configuration->set("y", value + 1).get(); });
    configuration->set("x", 1).get();
    EXPECT_THAT(other->values(), ElementsAre(2));
}

TEST(WatchReentrancy, ASubscriberMaySetItsOwnOption) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x", [&](int value) {
        if (value < 3)
            configuration->set("x", value + 1).get();
    });
    configuration->set("x", 1).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2, 3));
    EXPECT_EQ(3, intOf(*configuration, "x"));
}

TEST(WatchReentrancy, AStreamCreatedDuringAPassIsNotNotifiedByIt) {
    const auto configuration = makeConfiguration();
    std::shared_ptr<RecordingSubscriber> late;
    watch(*configuration, "x", [&](int) {
        if (!late)
            late = watch(*configuration, "x");
    });
    configuration->set("x", 1).get();
    EXPECT_THAT(late->values(), ElementsAre(1)); // once, from watchOption itself
    configuration->set("x", 2).get();
    EXPECT_THAT(late->values(), ElementsAre(1, 2));
}

TEST(WatchReentrancy, AStreamRemovedDuringAPassStillReceivesItsValue) {
    const auto configuration = makeConfiguration();
    watch(*configuration, "x", [&](int) { configuration->removeStream(1); });
    const auto removed = watch(*configuration, "x");
    configuration->set("x", 1).get();
    EXPECT_THAT(removed->values(), ElementsAre(1));
    EXPECT_EQ(1, removed->completions()); // the pass was its last owner
    configuration->set("x", 2).get();
    EXPECT_THAT(removed->values(), ElementsAre(1));
}

TEST(WatchReentrancy, AStreamCancelledDuringAPassReceivesNothing) {
    const auto configuration = makeConfiguration();
    std::shared_ptr<RecordingSubscriber> second;
    watch(*configuration, "x", [&](int) { second->cancel(); });
    second = watch(*configuration, "x");
    configuration->set("x", 1).get();
    EXPECT_THAT(second->values(), ElementsAre());
}

TEST(WatchReentrancy, ASubscriberMayCancelItsOwnStream) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    subscriber->inOnNext = [&, self = subscriber.get()](int) { self->cancel(); };
    configuration->set("x", 1).get();
    configuration->set("x", 2).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
    EXPECT_EQ(1, subscriber.use_count());
}

TEST(WatchReentrancy, ASubscriberMayRequestOneValueAtATime) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x", nullptr, 1);
    subscriber->inOnNext = [self = subscriber.get()](int) { self->request(1); };
    for (const int value : {1, 2, 3})
        configuration->set("x", value).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2, 3));
}

TEST(WatchReentrancy, ASubscriberMayAddASource) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x", [&](int value) {
        if (value == 1)
            configuration->addInMemorySource("added", "", -1, false, {{"x", 2}}).get();
    });
    configuration->set("x", 1).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2));
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("added", "override", "default"));
}

TEST(WatchReentrancy, ASubscriberMayRemoveTheSupplier) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 9, "default").get();
    const auto subscriber = watch(*configuration, "x", [&](int value) {
        if (value == 1)
            configuration->removeSource("override").get();
    });
    configuration->set("x", 1).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(9, 1, 9));
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("default"));
}

TEST(WatchReentrancy, APassOffersOneValueEvenIfASubscriberChangesTheOption) {
    const auto configuration = makeConfiguration();
    watch(*configuration, "x", [&](int value) {
        if (value == 1)
            configuration->set("x", 2).get();
    });
    const auto second = watch(*configuration, "x");
    configuration->set("x", 1).get();
    EXPECT_THAT(second->values(), ElementsAre(2, 1)); // the inner pass comes first
}

TEST(WatchReentrancy, ASubscriberMayUseTheConfigurationWhenItsStreamCompletes) {
    const auto configuration = makeConfiguration();
    bool found = true;
    watch(*configuration, "x")->inOnComplete = [&] { found = has(*configuration, "x"); };
    configuration->removeStream(0);
    EXPECT_FALSE(found);
}

TEST(WatchLocks, SetHoldsTheMutexDuringNotifications) {
    const auto configuration = makeConfiguration();
    MutexProbe probe(*configuration);
    bool held = false;
    watch(*configuration, "x", [&](int) { held = probe.isHeld(); });
    configuration->set("x", 1).get();
    EXPECT_TRUE(held);
}

TEST(WatchLocks, AReportedChangeIsDeliveredWithoutTheMutex) {
    Journal journal;
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<ScriptedSource>(journal, "a");
    configuration->addSource("a", "", -1, false, source).get();
    MutexProbe probe(*configuration);
    bool held = true;
    watch(*configuration, "x", [&](int) { held = probe.isHeld(); });
    source->change("x", 1);
    EXPECT_FALSE(held);
}

TEST(WatchLocks, AddSourceNotifiesWithoutTheMutex) {
    const auto configuration = makeConfiguration();
    MutexProbe probe(*configuration);
    bool held = true;
    watch(*configuration, "x", [&](int) { held = probe.isHeld(); });
    configuration->addInMemorySource("a", "", -1, false, {{"x", 1}}).get();
    EXPECT_FALSE(held);
}

TEST(WatchLocks, RemoveSourceNotifiesWithoutTheMutex) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1, "default").get();
    configuration->set("x", 2).get();
    MutexProbe probe(*configuration);
    bool held = true;
    const auto subscriber = watch(*configuration, "x", [&](int value) {
        if (value == 1)
            held = probe.isHeld();
    });
    configuration->removeSource("override").get();
    EXPECT_FALSE(held);
}

TEST(WatchLocks, RemoveStreamCompletesTheStreamWithoutTheMutex) {
    const auto configuration = makeConfiguration();
    MutexProbe probe(*configuration);
    bool held = true;
    watch(*configuration, "x")->inOnComplete = [&] { held = probe.isHeld(); };
    configuration->removeStream(0);
    EXPECT_FALSE(held);
}

TEST(WatchLocks, TheMutexIsFreeAfterEveryKindOfNotification) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    configuration->set("x", 1).get();
    configuration->addInMemorySource("a", "", -1, false, {{"x", 2}}).get();
    configuration->removeSource("a").get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2, 1));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

} // namespace
