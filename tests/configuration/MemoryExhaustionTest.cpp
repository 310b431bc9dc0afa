/// Operations that run out of memory: each of their allocations fails in turn. This is a program of
/// its own because it replaces the global operator new.
#include "configuration/Answers.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "support/AllocationFailure.hpp"
#include "support/LogCapture.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <unordered_map>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using test::failEveryAllocation;
using test::makeConfiguration;
using test::RecordingSubscriber;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

// Too long for the small-string optimisation, so that every copy allocates.
const std::string key = "group.a.key.that.is.longer.than.a.short.string";
const std::string localKey = key.substr(6);
const std::string text = "a text that is longer than what a string holds in place";
const std::string otherText = "another text that is longer than what a string holds in place";

using Subject = std::shared_ptr<ConfigurationImpl>;

/// "group" supplies the key; "override" could take a write.
Subject makeSubject() {
    auto configuration = makeConfiguration();
    configuration->addInMemorySource("group", "group", 5, true, {{localKey, text}}).get();
    return configuration;
}

std::string textOf(ConfigurationImpl& configuration) {
    return boost::get<std::string>(configuration.get(key).get());
}

void expectUnchanged(const Subject& configuration) {
    EXPECT_EQ(text, textOf(*configuration));
    EXPECT_THAT(test::sourcesOf(*configuration), ElementsAre("override", "group", "default"));
}

/// Fails each allocation of a read-only operation in turn.
template <typename Operation>
void expectHarmless(Operation operation) {
    const std::size_t failures =
        failEveryAllocation(makeSubject, operation, expectUnchanged, expectUnchanged);
    EXPECT_GT(failures, 0U);
}

TEST(MemoryExhaustion, DuringALookupChangesNothing) {
    expectHarmless([](const Subject& configuration) { configuration->get(key).get(); });
    expectHarmless([](const Subject& configuration) { configuration->getOption(key).get(); });
    expectHarmless([](const Subject& configuration) { configuration->has(key).get(); });
    expectHarmless([](const Subject& configuration) { configuration->keys().get(); });
    expectHarmless([](const Subject& configuration) { configuration->explain(key); });
}

TEST(MemoryExhaustion, DuringALookupOfAMissingKeyChangesNothing) {
    const std::string missing = key + ".missing";
    expectHarmless(
        [&](const Subject& configuration) { std::ignore = configuration->get(missing); });
    expectHarmless(
        [&](const Subject& configuration) { std::ignore = configuration->getOption(missing); });
}

TEST(MemoryExhaustion, DuringSetThatFailsAnywayChangesNothing) {
    expectHarmless([](const Subject& configuration) {
        std::ignore = configuration->set(key, OptionValue(), "group");
    });
}

TEST(MemoryExhaustion, DuringSetLeavesTheOldValueOrTheNewOne) {
    failEveryAllocation(
        makeSubject,
        [](const Subject& configuration) { configuration->set(key, std::string(otherText)).get(); },
        [](const Subject& configuration) {
            EXPECT_THAT((std::vector<std::string>{text, otherText}),
                        Contains(textOf(*configuration)));
            configuration->set(key, std::string(otherText)).get();
            EXPECT_EQ(otherText, textOf(*configuration));
        },
        [](const Subject& configuration) { EXPECT_EQ(otherText, textOf(*configuration)); });
}

TEST(MemoryExhaustion, AfterAValueIsStoredDoesNotFailASetWithoutSubscribers) {
    failEveryAllocation(
        makeSubject, [](const Subject& configuration) { configuration->set("x", 1).get(); },
        [](const Subject& configuration) { EXPECT_FALSE(test::has(*configuration, "x")); },
        [](const Subject& configuration) { EXPECT_EQ(1, test::intOf(*configuration, "x")); });
}

TEST(MemoryExhaustion, DuringAddSourceRegistersTheSourceOrNot) {
    const auto add = [](const Subject& configuration) {
        return configuration->addInMemorySource("added", "group", 4, true, {{localKey, otherText}});
    };
    failEveryAllocation(
        makeSubject, add,
        [&](const Subject& configuration) {
            const bool isIn = !add(configuration).valid() || textOf(*configuration) == otherText;
            EXPECT_TRUE(isIn);
            EXPECT_TRUE(configuration->removeSource("added").get());
            expectUnchanged(configuration);
        },
        [](const Subject& configuration) { EXPECT_EQ(otherText, textOf(*configuration)); });
}

TEST(MemoryExhaustion, DuringRemoveSourceRemovesTheSourceOrNot) {
    failEveryAllocation(
        makeSubject,
        [](const Subject& configuration) { configuration->removeSource("group").get(); },
        expectUnchanged,
        [](const Subject& configuration) {
            EXPECT_THAT(test::sourcesOf(*configuration), Not(Contains("group")));
        });
}

TEST(MemoryExhaustion, DuringWatchOptionLeavesNoStream) {
    failEveryAllocation(
        makeSubject, [](const Subject& configuration) { configuration->watchOption(key); },
        [](const Subject& configuration) {
            const test::CoreLog log;
            configuration->set(key, std::string(otherText), "override").get();
            EXPECT_THAT(log.lines(), Not(Contains("notifying watcher: " + key)));
        },
        expectUnchanged);
}

TEST(MemoryExhaustion, WhileSubscribersAreNotifiedLosesNoLaterValue) {
    struct Watched {
        std::shared_ptr<ConfigurationImpl> configuration = makeConfiguration();
        std::shared_ptr<RecordingSubscriber> first = test::watch(*configuration, "x");
        std::shared_ptr<RecordingSubscriber> second = test::watch(*configuration, "x");
    };
    const auto expectServed = [](const Watched& watched) {
        watched.configuration->set("x", 2).get();
        EXPECT_EQ(2, watched.first->values().back());
        EXPECT_EQ(2, watched.second->values().back());
    };
    failEveryAllocation([] { return Watched(); },
                        [](const Watched& watched) { watched.configuration->set("x", 1).get(); },
                        expectServed, expectServed);
}

TEST(MemoryExhaustion, WhileAStreamIsCancelledEndsItOrNot) {
    struct Watched {
        std::shared_ptr<ConfigurationImpl> configuration = makeConfiguration();
        std::shared_ptr<ConfigurationImpl::OptionPublisher> publisher =
            configuration->watchOption("x");
        std::shared_ptr<RecordingSubscriber> subscriber = std::make_shared<RecordingSubscriber>();
    };
    failEveryAllocation(
        [] {
            Watched watched;
            watched.publisher->subscribe(watched.subscriber);
            return watched;
        },
        [](const Watched& watched) { watched.subscriber->cancel(); },
        [](const Watched& watched) {
            watched.subscriber->cancel();
            EXPECT_EQ(1, watched.publisher.use_count());
        },
        [](const Watched& watched) { EXPECT_EQ(1, watched.publisher.use_count()); });
}

TEST(MemoryExhaustion, WhileTheConfigurationIsDestroyedEndsItsStreams) {
    struct Watched {
        std::shared_ptr<ConfigurationImpl> configuration = makeConfiguration();
        std::shared_ptr<RecordingSubscriber> subscriber = test::watch(*configuration, "x");
    };
    const auto expectEnded = [](const Watched& watched) {
        EXPECT_EQ(1, watched.subscriber->completions());
    };
    failEveryAllocation([] { return Watched(); },
                        [](Watched& watched) { watched.configuration.reset(); }, expectEnded,
                        expectEnded);
}

} // namespace
