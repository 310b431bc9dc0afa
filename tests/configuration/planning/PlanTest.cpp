/// What a change would do.
#include "../Answers.hpp"
#include "../MutexProbe.hpp"
#include "../ScriptedSource.hpp"
#include "support/Expect.hpp"
#include "support/LogCapture.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>

#include <limits>
#include <typeinfo>

namespace {

using namespace connector::configuration;
using planning::AddSource;
using planning::RemoveSource;
using planning::ReplaceTables;
using planning::SetOption;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string textOf(const std::optional<Option>& option) {
    if (!option)
        return "nothing";
    const std::string value = option->value.type() == typeid(int)
                                  ? std::to_string(boost::get<int>(option->value))
                                  : "type " + std::to_string(option->value.which());
    return value + "@" + option->source;
}

std::vector<std::string> changesOf(const planning::Plan& plan) {
    std::vector<std::string> texts;
    for (const planning::OptionChange& change : plan.changes)
        texts.push_back(change.key + ": " + textOf(change.before) + " -> " + textOf(change.after) +
                        (change.isAnnounced ? "" : ", not announced"));
    return texts;
}

std::vector<std::string> hiddenOf(const planning::Plan& plan) {
    std::vector<std::string> texts;
    for (const planning::HiddenWrite& hidden : plan.hidden)
        texts.push_back(hidden.option.key + "=" + textOf(hidden.option) + " behind " +
                        hidden.behind);
    return texts;
}

class Planning : public ::testing::Test {
protected:
    using Values = std::unordered_map<std::string, OptionValue>;

    void add(const std::string& name, const std::string& group, int order, bool readOnly,
             Values values) {
        configuration->addInMemorySource(name, group, order, readOnly, std::move(values)).get();
    }

    /// The plan of a source that is added read-only.
    planning::Plan planToAdd(const std::string& group, int order, Values values) {
        return configuration->plan(AddSource{"new", group, order, true,
                                             std::make_shared<InMemorySource>(std::move(values))});
    }

    template <typename Exception>
    void expectFailure(const std::string& text, const planning::Change& change) {
        test::expectThrows<Exception>(text, [&] { return configuration->plan(change); });
    }

    test::Journal journal; // outlives the sources
    std::shared_ptr<ConfigurationImpl> configuration = test::makeConfiguration();
};

TEST_F(Planning, SetTellsTheValueBeforeAndAfter) {
    add("site", "", 100, true, {{"x", 1}});
    const planning::Plan plan = configuration->plan(SetOption{"x", 2});
    EXPECT_THAT(changesOf(plan), ElementsAre("x: 1@site -> 2@override"));
    EXPECT_THAT(hiddenOf(plan), IsEmpty());
    EXPECT_THAT(plan.goneKeys(), IsEmpty());
    EXPECT_EQ(1, test::intOf(*configuration, "x")); // nothing has changed
}

TEST_F(Planning, SetOfANewOptionHasNoValueBefore) {
    EXPECT_THAT(changesOf(configuration->plan(SetOption{"x", 2})),
                ElementsAre("x: nothing -> 2@override"));
}

TEST_F(Planning, SetOfTheSameValueInTheSameSourceChangesNothing) {
    configuration->set("x", 1).get();
    configuration->set("nan", std::numeric_limits<double>::quiet_NaN()).get();
    EXPECT_THAT(changesOf(configuration->plan(SetOption{"x", 1})), IsEmpty());
    EXPECT_THAT(
        changesOf(configuration->plan(SetOption{"nan", std::numeric_limits<double>::quiet_NaN()})),
        IsEmpty());
}

TEST_F(Planning, SetOfAnotherTypeOrFromAnotherSourceIsAChange) {
    configuration->set("x", 1, "default").get();
    EXPECT_THAT(changesOf(configuration->plan(SetOption{"x", 1})),
                ElementsAre("x: 1@default -> 1@override"));
    EXPECT_THAT(changesOf(configuration->plan(SetOption{"x", 1u, "default"})),
                ElementsAre("x: 1@default -> type 2@default"));
}

TEST_F(Planning, SetTellsBehindWhatTheValueStaysHidden) {
    add("pinned", "", -1, true, {{"x", 1}});
    const planning::Plan plan = configuration->plan(SetOption{"x", 2});
    EXPECT_THAT(changesOf(plan), IsEmpty());
    EXPECT_THAT(hiddenOf(plan), ElementsAre("x=2@override behind pinned"));
    EXPECT_THAT(hiddenOf(configuration->plan(SetOption{"x", 3, "default"})),
                ElementsAre("x=3@default behind pinned"));
}

TEST_F(Planning, SetGoesToTheSourceWhoseGroupFits) {
    add("net", "net", -1, false, {{"port", 1}});
    EXPECT_THAT(changesOf(configuration->plan(SetOption{"net.port", 2})),
                ElementsAre("net.port: 1@net -> 2@net"));
    EXPECT_THAT(changesOf(configuration->plan(SetOption{"network", 2})),
                ElementsAre("network: nothing -> 2@override"));
}

TEST_F(Planning, SetFailsWithTheTextsOfSet) {
    add("site", "", 100, true, {});
    add("net", "net", 100, false, {});
    for (const std::string source : {"site", "net", "missing"}) {
        SCOPED_TRACE(source);
        const std::string text = "Source not found or not writable: x, " + source;
        expectFailure<std::runtime_error>(text, SetOption{"x", 1, source});
        test::expectThrows<std::runtime_error>(
            text, [&] { return configuration->set("x", 1, source).get(); });
    }
    configuration->removeSource("override").get();
    configuration->removeSource("default").get();
    expectFailure<std::runtime_error>("No writable configuration source for key: x",
                                      SetOption{"x", 1});
}

TEST_F(Planning, SetInAPropertyFileFailsAsItDoesThere) {
    const test::TemporaryDirectory directory;
    const std::u16string path = directory.write("site.properties", "x=1\n").u16string();
    configuration->addPropertyFileSource("site", "", -1, false, path).get();
    expectFailure<std::runtime_error>("PropertyFileSource does not support writing",
                                      SetOption{"x", 1});
}

TEST_F(Planning, AddTellsWhatChangesAndWhatStaysHidden) {
    configuration->set("a", 1).get();
    configuration->set("net.b", 2, "default").get();
    const planning::Plan plan = planToAdd("", 100, {{"a", 10}, {"net.b", 20}, {"c", 30}});
    EXPECT_THAT(changesOf(plan), ElementsAre("c: nothing -> 30@new", "net.b: 2@default -> 20@new"));
    EXPECT_THAT(hiddenOf(plan), ElementsAre("a=10@new behind override"));
    EXPECT_THAT(changesOf(planToAdd("net", 100, {{"b", 20}})),
                ElementsAre("net.b: 2@default -> 20@new"));
    EXPECT_THAT(test::sourcesOf(*configuration), ElementsAre("override", "default"));
}

TEST_F(Planning, AddGoesBeforeTheSourcesOfTheSameOrder) {
    configuration->set("a", 1).get();
    configuration->set("b", 1, "default").get();
    EXPECT_THAT(changesOf(planToAdd("", 0, {{"a", 2}})), ElementsAre("a: 1@override -> 2@new"));
    EXPECT_THAT(changesOf(planToAdd("", std::numeric_limits<int>::max(), {{"b", 2}})),
                ElementsAre("b: 1@default -> 2@new"));
}

TEST_F(Planning, AddFailsAsAddSourceDoes) {
    expectFailure<std::invalid_argument>(
        "Source with the requested name already exists: default",
        AddSource{"default", "", 0, true, std::make_shared<InMemorySource>(Values())});
    EXPECT_THROW(configuration->plan(AddSource{"new", "", 0, true, nullptr}), std::bad_typeid);
}

TEST_F(Planning, RemoveTellsWhatIsGoneAndThatNobodyIsTold) {
    configuration->set("a", 1, "default").get();
    add("site", "", 100, true, {{"a", 2}, {"b", 3}});
    const planning::Plan plan = configuration->plan(RemoveSource{"site"});
    EXPECT_THAT(changesOf(plan),
                ElementsAre("a: 2@site -> 1@default", "b: 3@site -> nothing, not announced"));
    EXPECT_THAT(plan.goneKeys(), ElementsAre("b"));
    EXPECT_TRUE(test::has(*configuration, "b"));
}

TEST_F(Planning, RemoveOfHiddenValuesChangesNothing) {
    configuration->set("a", 1).get();
    add("site", "", 100, true, {{"a", 2}});
    EXPECT_THAT(changesOf(configuration->plan(RemoveSource{"site"})), IsEmpty());
}

TEST_F(Planning, RemoveOfASourceWithAGroupAnnouncesNothing) {
    configuration->set("net.port", 1, "default").get();
    add("site", "net", 100, true, {{"port", 2}});
    EXPECT_THAT(changesOf(configuration->plan(RemoveSource{"site"})),
                ElementsAre("net.port: 2@site -> 1@default, not announced"));
}

TEST_F(Planning, RemoveOfAnUnknownSourceFails) {
    expectFailure<std::runtime_error>("No source with that name: site", RemoveSource{"site"});
}

TEST_F(Planning, ReplacedTablesTellTheDifferencesOfAllOfThem) {
    configuration->set("a", 1).get();
    add("one", "", 100, true, {{"a", 2}, {"b", 3}, {"c", 4}, {"d", 5}});
    add("two", "net", 200, true, {{"a", 6}, {"gone", 7}});
    const planning::Plan plan = configuration->plan(ReplaceTables{
        {{"one", {{"a", 20}, {"b", 3}, {"c", 40}, {"e", 8}}}, {"two", {{"a", 60}, {"b", 9}}}}});
    EXPECT_THAT(changesOf(plan),
                ElementsAre("c: 4@one -> 40@one", "d: 5@one -> nothing, not announced",
                            "e: nothing -> 8@one", "net.a: 6@two -> 60@two",
                            "net.b: nothing -> 9@two",
                            "net.gone: 7@two -> nothing, not announced"));
    EXPECT_THAT(hiddenOf(plan), ElementsAre("a=20@one behind override"));
    EXPECT_THAT(plan.goneKeys(), ElementsAre("d", "net.gone"));
    expectFailure<std::runtime_error>("No source with that name: x", ReplaceTables{{{"x", {}}}});
}

TEST_F(Planning, WhatIsPlannedIsWhatHappens) {
    configuration->set("a", 1).get();
    configuration->set("b", 2, "default").get();
    const auto effects = [this](const planning::Plan& plan) {
        for (const planning::OptionChange& change : plan.changes) {
            const std::vector<Option> now = configuration->optionsOf({change.key});
            EXPECT_EQ(textOf(change.after),
                      textOf(now.empty() ? std::nullopt : std::optional<Option>(now.front())));
        }
        return plan.changes.size();
    };
    const Values values{{"a", 10}, {"b", 20}, {"c", 30}};
    const planning::Plan added = planToAdd("", 100, values);
    add("new", "", 100, true, values);
    EXPECT_EQ(2u, effects(added));
    const planning::Plan removed = configuration->plan(RemoveSource{"new"});
    configuration->removeSource("new").get();
    EXPECT_EQ(2u, effects(removed));
    const planning::Plan set = configuration->plan(SetOption{"b", 3});
    configuration->set("b", 3).get();
    EXPECT_EQ(1u, effects(set));
}

TEST_F(Planning, ReadsSourcesAndDoesNothingElseWithThem) {
    const auto source = std::make_shared<test::ScriptedSource>(
        journal, "site", std::map<std::string, OptionValue>{{"x", 1}});
    configuration->addSource("site", "", -1, false, source).get();
    const auto added = std::make_shared<test::ScriptedSource>(
        journal, "new", std::map<std::string, OptionValue>{{"x", 2}});
    journal.clear();
    EXPECT_THAT(changesOf(configuration->plan(SetOption{"x", 2})),
                ElementsAre("x: 1@site -> 2@site"));
    EXPECT_THAT(journal, ElementsAre("site has x", "site get x"));
    configuration->plan(AddSource{"new", "", -2, false, added});
    configuration->plan(RemoveSource{"site"});
    configuration->plan(ReplaceTables{{{"site", {{"x", 2}}}}});
    for (const std::string& event : journal) {
        EXPECT_EQ(event.npos, event.find("set")) << event;
        EXPECT_EQ(event.npos, event.find("watched")) << event;
    }
    EXPECT_FALSE(added->isWatched());
}

TEST_F(Planning, TellsNoWatcherAndLogsNothing) {
    add("site", "", 100, true, {{"x", 1}});
    const auto stream = configuration->watchOption("x");
    std::vector<std::string> heard;
    const auto listening =
        configuration->listen([&](const std::string& key) { heard.push_back(key); });
    const test::CoreLog log;
    configuration->plan(SetOption{"x", 2});
    configuration->plan(RemoveSource{"site"});
    configuration->plan(ReplaceTables{{{"site", {}}}});
    planToAdd("", 0, {{"x", 3}});
    configuration->snapshot();
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Planning, ReadsUnderTheMutexAndReleasesItWhenASourceThrows) {
    const auto source = std::make_shared<test::ScriptedSource>(
        journal, "site", std::map<std::string, OptionValue>{{"x", 1}});
    configuration->addSource("site", "", -1, false, source).get();
    bool wasHeld = false;
    {
        test::MutexProbe probe(*configuration); // its lookup ends with this block
        source->onHas = [&](const std::string& key) {
            if (key == "x") // the probe looks up another one
                wasHeld = wasHeld || probe.isHeld();
        };
        configuration->plan(SetOption{"x", 2});
    }
    source->onHas = nullptr; // now that the lookup of the probe no longer reads it
    EXPECT_TRUE(wasHeld);
    source->onKeys = [](const std::string&) { throw std::logic_error("keys"); };
    expectFailure<std::logic_error>("keys", RemoveSource{"site"});
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(Planning, SurvivesASourceThatChangesItsAnswer) {
    const auto source = std::make_shared<test::ScriptedSource>(
        journal, "new", std::map<std::string, OptionValue>{{"x", 1}});
    source->answersOfHas = {true, false, false};
    const planning::Plan plan = configuration->plan(AddSource{"new", "", 0, true, source});
    EXPECT_THAT(changesOf(plan), IsEmpty());
    EXPECT_THAT(hiddenOf(plan), IsEmpty());
}

TEST_F(Planning, ASnapshotHasAllSourcesInOrderWithAllEntries) {
    configuration->set("a", 1).get();
    add("site", "net", 100, true, {{"port", 2}, {"host", 3}});
    const auto source = std::make_shared<test::ScriptedSource>(
        journal, "app", std::map<std::string, OptionValue>{{"x", 4}});
    configuration->addSource("app", "", 100, false, source).get();
    const std::vector<SourceSnapshot> sources = configuration->snapshot();
    ASSERT_EQ(4u, sources.size());
    EXPECT_EQ("override", sources[0].name);
    EXPECT_EQ("app", sources[1].name);
    EXPECT_FALSE(sources[1].readOnly);
    EXPECT_TRUE(OptionValue(4) == sources[1].entries.at("x").value);
    EXPECT_EQ("site", sources[2].name);
    EXPECT_EQ("net.", sources[2].group);
    EXPECT_EQ(100, sources[2].order);
    EXPECT_TRUE(sources[2].readOnly);
    EXPECT_EQ(2u, sources[2].entries.size());
    EXPECT_FALSE(sources[2].entries.at("port").isMasked);
    EXPECT_EQ("default", sources[3].name);
}

} // namespace
