/// What removeSource and the destructor do with sources and subscribers.
#include "configuration/Answers.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/ScriptedSource.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace {

using test::Journal;
using test::RecordingSubscriber;
using test::ScriptedSource;
using test::sourcesOf;
using test::watch;
using testing::ElementsAre;

class SourceRemoval : public testing::Test {
protected:
    std::shared_ptr<ScriptedSource> add(const std::string& name, const std::string& group,
                                        int order,
                                        std::map<std::string, ScriptedSource::OptionValue> values) {
        auto source = std::make_shared<ScriptedSource>(journal, name, std::move(values));
        EXPECT_TRUE(configuration->addSource(name, group, order, false, source).get());
        journal.clear();
        return source;
    }

    bool remove(const std::string& name) { return configuration->removeSource(name).get(); }

    Journal journal;
    std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        test::makeConfiguration();
};

TEST_F(SourceRemoval, AsksForTheKeysThenReleasesTheSource) {
    add("a", "", -1, {{"x", 1}});
    EXPECT_TRUE(remove("a"));
    EXPECT_THAT(journal, ElementsAre("a keys", "a destroyed"));
}

TEST_F(SourceRemoval, LooksUpEachKeyInAscendingOrderInTheOtherSources) {
    const auto removed = add("a", "", -1, {{"x", 1}, {"b", 2}});
    add("rest", "", -1, {{"x", 3}});
    remove("a");
    EXPECT_THAT(journal,
                ElementsAre("a keys", "rest has b", "rest has x", "rest has x", "rest get x"));
}

TEST_F(SourceRemoval, DeliversTheNewEffectiveValue) {
    const auto subscriber = watch(*configuration, "x");
    configuration->set("x", 1, "default").get();
    add("a", "", -1, {{"x", 2}});
    remove("a");
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2, 1));
}

TEST_F(SourceRemoval, DeliversTheSameValueAgainWhenAnotherSourceSuppliesIt) {
    configuration->set("x", 1).get();
    const auto subscriber = watch(*configuration, "x");
    add("a", "", 5, {{"x", 2}});
    remove("a");
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 1, 1));
}

TEST_F(SourceRemoval, DeliversNothingWhenAKeyLosesItsLastValue) {
    const auto subscriber = watch(*configuration, "x");
    add("a", "", -1, {{"x", 2}});
    remove("a");
    EXPECT_THAT(subscriber->values(), ElementsAre(2));
    EXPECT_EQ(0, subscriber->completions());
}

TEST_F(SourceRemoval, OfASourceWithAGroupDoesNotNotifySubscribersOfItsKeys) {
    configuration->set("net.port", 1).get();
    const auto subscriber = watch(*configuration, "net.port");
    add("a", "net", -1, {{"port", 2}});
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2));
    remove("a");
    EXPECT_EQ(1, test::intOf(*configuration, "net.port"));
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2)); // although 1 is effective again
}

TEST_F(SourceRemoval, OfASourceWithAGroupNotifiesSubscribersOfItsLocalKeys) {
    configuration->set("port", 1).get();
    const auto subscriber = watch(*configuration, "port");
    add("a", "net", -1, {{"port", 2}});
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
    remove("a");
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 1));
}

TEST_F(SourceRemoval, LeavesTheWatcherInstalled) {
    const auto source = add("a", "", -1, {{"x", 1}});
    remove("a");
    EXPECT_TRUE(source->isWatched());
    EXPECT_THAT(journal, ElementsAre("a keys"));
}

TEST_F(SourceRemoval, StillDeliversChangesThatTheRemovedSourceReports) {
    const auto source = add("a", "net", -1, {{"x", 1}});
    remove("a");
    configuration->set("net.x", 5).get();
    const auto subscriber = watch(*configuration, "net.x");
    source->change("x", 2);
    EXPECT_THAT(subscriber->values(), ElementsAre(5, 5)); // the effective value, not the source's
}

TEST_F(SourceRemoval, NeverCallsTheRemovedSourceAgain) {
    const auto source = add("a", "", -1, {{"x", 1}});
    remove("a");
    journal.clear();
    source->report("x");
    configuration->set("x", 2).get();
    configuration->get("x").get();
    configuration->keys().get();
    configuration->explain("x");
    EXPECT_THAT(journal, ElementsAre());
}

TEST_F(SourceRemoval, ThrowsAndKeepsASourceWhoseKeysThrows) {
    const auto source = add("a", "", -1, {{"x", 1}});
    source->onKeys = [](const std::string&) { throw std::range_error("no keys"); };
    EXPECT_THROW(remove("a"), std::range_error);
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("a", "override", "default"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(SourceRemoval, IsNotUndoneWhenAnotherSourceThrowsAfterwards) {
    add("a", "", -1, {{"x", 1}});
    const auto other = add("other", "", 5, {});
    other->onHas = [](const std::string&) { throw std::range_error("no answer"); };
    EXPECT_THROW(remove("a"), std::range_error);
    other->onHas = nullptr;
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "other", "default"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(SourceRemoval, ContinuesAfterASubscriberRemovedAnotherSource) {
    configuration->set("b", 1, "default").get();
    configuration->set("x", 2, "default").get();
    add("a", "", -1, {{"b", 3}, {"x", 4}});
    int calls = 0;
    watch(*configuration, "b", [&](int) {
        if (++calls == 2)
            remove("default");
    });
    const auto second = watch(*configuration, "x");
    EXPECT_TRUE(remove("a"));
    EXPECT_EQ(2, calls);
    EXPECT_THAT(second->values(), ElementsAre(4)); // x has no value any more
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override"));
}

TEST_F(SourceRemoval, DestructionClearsTheWatchersInTheOrderOfConsultation) {
    const auto a = add("a", "", 5, {});
    const auto b = add("b", "net", 5, {});
    const auto c = add("c", "", -1, {});
    configuration.reset();
    EXPECT_THAT(journal, ElementsAre("c unwatched", "b unwatched", "a unwatched"));
    EXPECT_FALSE(a->isWatched());
}

TEST_F(SourceRemoval, LeavesTheWatcherInstalledAfterTheDestruction) {
    const auto a = add("a", "", 5, {});
    remove("a");
    journal.clear();
    configuration.reset();
    EXPECT_TRUE(a->isWatched());
    EXPECT_THAT(journal, ElementsAre());
}

TEST_F(SourceRemoval, DestructionLeavesASharedSourceUsable) {
    const auto a = add("a", "", 5, {{"x", 1}});
    const auto subscriber = watch(*configuration, "x");
    configuration.reset();
    a->change("x", 2); // reaches no subscriber
    EXPECT_EQ(1, a.use_count());
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
}

TEST_F(SourceRemoval, DestructionClearsWatchersThenCompletesStreamsThenReleasesSources) {
    add("a", "", 5, {});
    const auto subscriber = watch(*configuration, "x");
    subscriber->inOnComplete = [&] { journal.push_back("completed"); };
    journal.clear();
    configuration.reset();
    EXPECT_THAT(journal, ElementsAre("a unwatched", "completed", "a destroyed"));
}

} // namespace
