/// The calls that addSource makes to a source, and what happens when one of them throws.
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
#include <tuple>
#include <typeinfo>

namespace {

using test::expectThrows;
using test::Journal;
using test::RecordingSubscriber;
using test::ScriptedSource;
using test::sourcesOf;
using test::watch;
using testing::ElementsAre;

/// A configuration and a source "a" that is consulted before all others.
class SourceRegistration : public testing::Test {
protected:
    std::shared_ptr<ScriptedSource>
    make(const std::string& name, std::map<std::string, ScriptedSource::OptionValue> values) {
        return std::make_shared<ScriptedSource>(journal, name, std::move(values));
    }

    bool add(const std::shared_ptr<ScriptedSource>& source, const std::string& name = "a",
             const std::string& group = "", int order = -1) {
        return configuration->addSource(name, group, order, false, source).get();
    }

    Journal journal;
    std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        test::makeConfiguration();
};

/// What a hook of a source throws; no other code throws this type.
class SourceFailure : public std::exception {
public:
    const char* what() const noexcept override { return "the source failed"; }
};

void fail(const std::string&) {
    throw SourceFailure();
}

TEST_F(SourceRegistration, AsksForTheKeysThenForEachEffectiveValueThenSetsTheWatcher) {
    EXPECT_TRUE(add(make("a", {{"x", 1}, {"b", 2}})));
    EXPECT_THAT(journal, ElementsAre("a keys",                        //
                                     "a has b", "a has b", "a get b", // in ascending order
                                     "a has x", "a has x", "a get x", //
                                     "a watched"));
}

TEST_F(SourceRegistration, AsksASourceWithAGroupForItsLocalKeys) {
    add(make("a", {{"x", 1}}), "a", "net");
    EXPECT_THAT(journal, ElementsAre("a keys", "a has x", "a has x", "a get x", "a watched"));
}

TEST_F(SourceRegistration, DoesNotCallASourceWhoseNameIsTaken) {
    const auto subscriber = watch(*configuration, "x");
    const auto source = make("a", {{"x", 1}});
    EXPECT_ANY_THROW(add(source, "default"));
    EXPECT_THAT(journal, ElementsAre());
    EXPECT_FALSE(source->isWatched());
    EXPECT_THAT(subscriber->values(), ElementsAre());
}

TEST_F(SourceRegistration, DeliversTheEffectiveValueEvenIfAnotherSourceSuppliesIt) {
    std::ignore = configuration->set("x", 1);
    const auto subscriber = watch(*configuration, "x");
    add(make("a", {{"x", 2}}), "a", "", 5);
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 1));
}

TEST_F(SourceRegistration, NotifiesSubscribersOfTheKeysWithTheGroup) {
    const auto prefixed = watch(*configuration, "net.x");
    const auto bare = watch(*configuration, "x");
    add(make("a", {{"x", 2}}), "a", "net");
    EXPECT_THAT(prefixed->values(), ElementsAre(2));
    EXPECT_THAT(bare->values(), ElementsAre());
}

TEST_F(SourceRegistration, SetsTheWatcherAfterTheLookups) {
    const auto source = make("a", {{"x", 1}});
    source->onGet = [&](const std::string&) { EXPECT_FALSE(source->isWatched()); };
    add(source);
    EXPECT_TRUE(source->isWatched());
    source->onGet = nullptr;
}

TEST_F(SourceRegistration, DeliversAChangeThatTheSourceReports) {
    const auto source = make("a", {{"x", 1}});
    add(source, "a", "net");
    const auto subscriber = watch(*configuration, "net.x");
    source->change("x", 2);
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2));
}

TEST_F(SourceRegistration, OfANullSourceThrowsAndRegistersNothing) {
    EXPECT_THROW(std::ignore = configuration->addSource("a", "", 5, false, nullptr),
                 std::bad_typeid);
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "default"));
}

TEST_F(SourceRegistration, OfANullSourceThrowsAndLogsNothing) {
    const test::CoreLog log;
    EXPECT_THROW(std::ignore = configuration->addSource("a", "", 5, false, nullptr),
                 std::bad_typeid);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(SourceRegistration, KeepsASourceWhoseKeysThrows) {
    const auto source = make("a", {{"x", 1}});
    source->onKeys = fail;
    EXPECT_THROW(add(source), SourceFailure);
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("a", "override", "default"));
    EXPECT_EQ(1, test::intOf(*configuration, "x"));
    EXPECT_FALSE(source->isWatched());
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(SourceRegistration, KeepsASourceWhoseSetWatcherThrows) {
    const auto source = make("a", {{"x", 1}});
    source->onSetWatcher = fail;
    EXPECT_THROW(add(source), SourceFailure);
    source->onSetWatcher = nullptr;
    EXPECT_EQ(1, test::intOf(*configuration, "x"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(SourceRegistration, KeepsASourceWhoseHasThrows) {
    const auto source = make("a", {{"x", 1}});
    source->onHas = fail;
    EXPECT_THROW(add(source), SourceFailure);
    source->onHas = nullptr;
    EXPECT_EQ(1, test::intOf(*configuration, "x"));
    EXPECT_FALSE(source->isWatched());
}

TEST_F(SourceRegistration, KeepsASourceWhoseGetThrows) {
    const auto source = make("a", {{"x", 1}});
    source->onGet = fail;
    EXPECT_THROW(add(source), SourceFailure);
    source->onGet = nullptr;
    EXPECT_EQ(1, test::intOf(*configuration, "x"));
    EXPECT_FALSE(source->isWatched());
}

TEST_F(SourceRegistration, CanBeRepeatedAfterAFailureAndARemoval) {
    const auto source = make("a", {{"x", 1}});
    source->onKeys = fail;
    EXPECT_THROW(add(source), SourceFailure);
    source->onKeys = nullptr;
    EXPECT_ANY_THROW(add(source)); // the name is taken
    EXPECT_TRUE(configuration->removeSource("a").get());
    EXPECT_TRUE(add(source));
}

TEST_F(SourceRegistration, ThrowsWhenTheSourceChangesItsAnswer) {
    const auto source = make("a", {{"x", 1}});
    source->answersOfHas = {true, false};
    expectThrows<std::runtime_error>("No option value for key: x", [&] { add(source); });
    EXPECT_FALSE(source->isWatched());
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("a", "override", "default"));
}

TEST_F(SourceRegistration, ContinuesAfterASubscriberRemovedTheSource) {
    const auto source = make("a", {{"b", 1}, {"x", 2}});
    const auto first =
        watch(*configuration, "b", [&](int) { std::ignore = configuration->removeSource("a"); });
    const auto second = watch(*configuration, "x");
    EXPECT_TRUE(add(source));
    EXPECT_THAT(first->values(), ElementsAre(1));
    EXPECT_THAT(second->values(), ElementsAre()); // x has no value by then
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "default"));
    EXPECT_TRUE(source->isWatched());
    source->setWatcher({});
}

TEST_F(SourceRegistration, AllowsASubscriberToAddManySources) {
    const auto subscriber = watch(*configuration, "b", [&](int) {
        for (int i = 0; i < 50; ++i)
            std::ignore =
                configuration->addInMemorySource("added" + std::to_string(i), "", 1, false, {});
    });
    EXPECT_TRUE(add(make("a", {{"b", 1}, {"x", 2}})));
    EXPECT_EQ(53u, sourcesOf(*configuration).size());
    EXPECT_EQ(2, test::intOf(*configuration, "x"));
}

} // namespace
