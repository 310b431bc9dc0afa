/// What may outlive what, and what may be released during a call. Also meant for the address
/// sanitizer, which detects every use after free.
#include "configuration/Answers.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/ScriptedSource.hpp"
#include "support/LogCapture.hpp"

#include <connector/configuration/sources/InMemorySource.hpp>
#include <foundation/log/basic_diagnostic_logger.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;
using test::Journal;
using test::makeConfiguration;
using test::ScriptedSource;
using test::watch;
using testing::Contains;
using testing::ElementsAre;

/// A configuration whose only owner is this fixture, and a subscriber of "x" that releases it.
class LastPointer : public testing::Test {
protected:
    LastPointer() {
        subscriber = watch(*configuration, "x", [this](int) { configuration.reset(); });
    }

    std::shared_ptr<ConfigurationImpl> configuration = makeConfiguration();
    const std::weak_ptr<ConfigurationImpl> observer = configuration;
    std::shared_ptr<test::RecordingSubscriber> subscriber;
};

TEST_F(LastPointer, ReleasedByASubscriberDuringSet) {
    ConfigurationImpl* const called = configuration.get();
    EXPECT_EQ(7, test::intIn(called->set("x", 7)));
    EXPECT_TRUE(observer.expired());
    EXPECT_EQ(1, subscriber->completions());
}

TEST_F(LastPointer, ReleasedByASubscriberDuringSetOfANamedSource) {
    ConfigurationImpl* const called = configuration.get();
    EXPECT_EQ(7, test::intIn(called->set("x", 7, "default")));
    EXPECT_TRUE(observer.expired());
}

TEST_F(LastPointer, ReleasedByASubscriberDuringAddSource) {
    ConfigurationImpl* const called = configuration.get();
    EXPECT_TRUE(called->addInMemorySource("added", "", 5, false, {{"x", 1}, {"y", 2}}).get());
    EXPECT_TRUE(observer.expired());
}

TEST_F(LastPointer, ReleasedByASubscriberDuringRemoveSource) {
    subscriber->inOnNext = nullptr;
    configuration->addInMemorySource("removed", "", 5, false, {{"x", 1}, {"y", 2}}).get();
    configuration->addInMemorySource("kept", "", 6, false, {{"x", 3}, {"y", 4}}).get();
    subscriber->inOnNext = [this](int) { configuration.reset(); };
    ConfigurationImpl* const called = configuration.get();
    EXPECT_TRUE(called->removeSource("removed").get());
    EXPECT_TRUE(observer.expired());
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 1, 3));
}

TEST_F(LastPointer, ReleasedByASubscriberWhileASourceReportsAChange) {
    Journal journal;
    const auto source = std::make_shared<ScriptedSource>(journal, "source");
    configuration->addSource("source", "", 5, true, source).get();
    source->change("x", 9);
    EXPECT_TRUE(observer.expired());
    EXPECT_FALSE(source->isWatched());
    EXPECT_THAT(subscriber->values(), ElementsAre(9));
}

TEST(RemovedSource, ThatOutlivesTheConfigurationIsHarmless) {
    Journal journal;
    const auto source = std::make_shared<ScriptedSource>(journal, "source");
    auto configuration = makeConfiguration();
    configuration->addSource("source", "", 5, true, source).get();
    configuration->removeSource("source").get();
    configuration.reset();
    journal.clear();
    source->change("x", 1);
    EXPECT_THAT(journal, ElementsAre());
}

TEST(RemovedSource, MayCallACopyOfItsWatcherAfterTheDestruction) {
    // A source that reports from another thread can still hold its watcher at this point.
    struct Keeping : InMemorySource {
        Keeping() : InMemorySource({}) {}
        void setWatcher(Watcher watcher) override {
            if (watcher)
                copy = watcher;
        }
        Watcher copy;
    };
    const auto source = std::make_shared<Keeping>();
    auto configuration = makeConfiguration();
    configuration->addSource("source", "", 5, true, source).get();
    configuration.reset();
    ASSERT_TRUE(source->copy);
    EXPECT_NO_THROW(source->copy("x"));
}

TEST(RemovedSource, OfAConfigurationOnTheStackStillReports) {
    Journal journal;
    const auto source = std::make_shared<ScriptedSource>(journal, "source");
    ConfigurationImpl configuration;
    configuration.addSource("source", "", 5, true, source).get();
    configuration.removeSource("source").get();
    test::CoreLog log;
    source->change("x", 1);
    EXPECT_THAT(log.lines(), Contains("updatePublishers: x"));
}

/// A log sink runs in the middle of an operation and can change the registry.
class RemovingSink : public testing::Test {
protected:
    /// Removes "source", which has no other owner, when this line is written.
    void removeAt(const std::string& line) {
        foundation::log::set_diagnostic_mask("connector::configuration", 8);
        removing = line;
    }

    Journal journal;
    std::shared_ptr<ConfigurationImpl> configuration = makeConfiguration();
    std::string removing;
    const test::LogCapture log{[this](const test::LogRecord& record) {
        if (record.message == removing)
            configuration->removeSource("source").get();
    }};
};

TEST_F(RemovingSink, BeforeASourceIsAskedForAValueDoesNotChangeTheResult) {
    configuration
        ->addSource("source", "group", -1, false,
                    std::make_shared<ScriptedSource>(journal, "source",
                                                     std::map<std::string, OptionValue>{{"x", 5}}))
        .get();
    removeAt("get: group.x from source");
    EXPECT_EQ(5, test::intOf(*configuration, "group.x"));
    EXPECT_FALSE(test::has(*configuration, "group.x"));
}

TEST_F(RemovingSink, BeforeASourceIsAskedForAnOptionDoesNotChangeTheResult) {
    configuration->addInMemorySource("source", "group", -1, false, {{"x", 5}}).get();
    removeAt("get option: group.x from source");
    EXPECT_EQ("source", test::supplierOf(*configuration, "group.x"));
    EXPECT_FALSE(test::has(*configuration, "group.x"));
}

TEST_F(RemovingSink, BeforeAWriteDoesNotPreventIt) {
    const auto source =
        std::make_shared<InMemorySource>(std::unordered_map<std::string, OptionValue>{});
    configuration->addSource("source", "group", -1, false, source).get();
    removeAt("set: group.x@source");
    EXPECT_EQ(5, test::intIn(configuration->set("group.x", 5)));
    EXPECT_TRUE(source->has("x"));
    EXPECT_FALSE(test::has(*configuration, "group.x"));
}

TEST(KeysOfASource, MayRemoveTheSource) {
    Journal journal;
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<ScriptedSource>(journal, "source");
    configuration->addSource("source", "", 5, true, source).get();
    bool isNested = false;
    source->onKeys = [&](const std::string&) {
        if (std::exchange(isNested, true))
            return;
        EXPECT_TRUE(configuration->removeSource("source").get());
    };
    EXPECT_FALSE(configuration->removeSource("source").get());
    EXPECT_THAT(test::sourcesOf(*configuration), ElementsAre("override", "default"));
}

TEST(KeysOfASource, MayReplaceTheSource) {
    Journal journal;
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<ScriptedSource>(journal, "source");
    configuration->addSource("source", "", 5, true, source).get();
    bool isNested = false;
    source->onKeys = [&](const std::string&) {
        if (std::exchange(isNested, true))
            return;
        configuration->removeSource("source").get();
        configuration->addInMemorySource("source", "", 6, true, {{"x", 1}}).get();
    };
    EXPECT_FALSE(configuration->removeSource("source").get());
    EXPECT_EQ("source", test::supplierOf(*configuration, "x"));
}

} // namespace
