/// Lookups in the library's own tables take a shortcut that must not be observable. Sources of the
/// application, also those derived from the library's sources, are called as often and in the same
/// order as without it, and every source still serves its group.
#include "configuration/Answers.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/ScriptedSource.hpp"
#include "support/LogCapture.hpp"

#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <unordered_map>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;
using connector::configuration::PropertyFileSource;
using test::intOf;
using test::Journal;
using test::makeConfiguration;
using test::supplierOf;
using testing::ElementsAre;
using testing::IsEmpty;

/// Derives from a source of the library and records its calls. It has every key of its table and
/// the key "extra", all with the value 7.
template <typename Base>
class Derived : public Base {
public:
    template <typename... Arguments>
    explicit Derived(Journal& newJournal, Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...), journal(newJournal) {}

    OptionValue get(const std::string& key) override {
        journal.push_back("get " + key);
        return 7;
    }
    bool has(const std::string& key) override {
        journal.push_back("has " + key);
        return key == "extra" || Base::has(key);
    }

private:
    Journal& journal;
};

std::unordered_map<std::string, OptionValue> table(const std::string& key, int value) {
    return {{key, value}};
}

class DerivedSource : public testing::Test {
protected:
    void add(const std::string& group = "") {
        configuration
            ->addSource("derived", group, 5, false,
                        std::make_shared<Derived<InMemorySource>>(journal, table("x", 1)))
            .get();
        journal.clear();
    }

    Journal journal;
    const std::shared_ptr<ConfigurationImpl> configuration = makeConfiguration();
};

TEST_F(DerivedSource, IsAskedTwiceForTheKeyAndThenForTheValue) {
    add();
    EXPECT_EQ(7, intOf(*configuration, "x"));
    EXPECT_THAT(journal, ElementsAre("has x", "has x", "get x"));
}

TEST_F(DerivedSource, IsAskedForAnOptionInTheSameWay) {
    add();
    EXPECT_EQ("derived", supplierOf(*configuration, "x"));
    EXPECT_THAT(journal, ElementsAre("has x", "has x", "get x"));
}

TEST_F(DerivedSource, IsAskedOnceByHas) {
    add();
    EXPECT_TRUE(test::has(*configuration, "x"));
    EXPECT_THAT(journal, ElementsAre("has x"));
}

TEST_F(DerivedSource, SuppliesKeysThatItsTableDoesNotHave) {
    add();
    EXPECT_EQ(7, intOf(*configuration, "extra"));
    EXPECT_FALSE(test::has(*configuration, "y"));
}

TEST_F(DerivedSource, IsAskedForTheKeyWithoutItsGroup) {
    add("net");
    EXPECT_EQ(7, intOf(*configuration, "net.x"));
    EXPECT_THAT(journal, ElementsAre("has x", "has x", "get x"));
}

TEST_F(DerivedSource, IsNotAskedForAKeyOfAnotherGroup) {
    add("net");
    configuration->set("other.x", 2, "default").get();
    journal.clear();
    EXPECT_EQ(2, intOf(*configuration, "other.x"));
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(DerivedSource, IsNotAskedWhenATableBeforeItHasTheKey) {
    add();
    configuration->set("x", 2, "override").get();
    journal.clear();
    EXPECT_EQ(2, intOf(*configuration, "x"));
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(DerivedSource, IsAskedTwiceWhenOnlyATableAfterItHasTheKey) {
    add();
    configuration->set("y", 2, "default").get();
    journal.clear();
    EXPECT_EQ(2, intOf(*configuration, "y"));
    EXPECT_THAT(journal, ElementsAre("has y", "has y"));
}

TEST_F(DerivedSource, IsAskedOnceForAMissingKey) {
    add();
    EXPECT_ANY_THROW(configuration->get("y").get());
    EXPECT_THAT(journal, ElementsAre("has y"));
}

TEST_F(DerivedSource, IsAskedForSubscribersInTheSameWay) {
    add();
    const auto subscriber = test::watch(*configuration, "x");
    EXPECT_THAT(journal, ElementsAre("has x", "has x", "get x"));
    journal.clear();
    configuration->set("x", 3, "derived").get();
    EXPECT_THAT(journal, ElementsAre("has x", "has x", "get x"));
    EXPECT_THAT(subscriber->values(), ElementsAre(7, 7));
}

TEST_F(DerivedSource, OfAPropertyFileIsAskedInTheSameWay) {
    const std::string path = testing::TempDir() + "own-tables.properties";
    std::ofstream(path) << "x=1\n";
    configuration
        ->addSource("derived", "", 5, true,
                    std::make_shared<Derived<PropertyFileSource>>(
                        journal, std::u16string(path.begin(), path.end())))
        .get();
    std::remove(path.c_str());
    journal.clear();
    EXPECT_EQ(7, intOf(*configuration, "x"));
    EXPECT_THAT(journal, ElementsAre("has x", "has x", "get x"));
}

/// Tables with groups of different lengths, so that the local key changes from one to the next. All
/// have the key "a.b.c", whose value is the order of the table.
class TablesUnderGroups : public testing::Test {
protected:
    TablesUnderGroups() {
        configuration->addInMemorySource("1", "a", 1, true, table("b.c", 1)).get();
        configuration->addInMemorySource("2", "", 2, true, table("a.b.c", 2)).get();
        configuration->addInMemorySource("3", "a.b", 3, true, table("c", 3)).get();
        configuration->addInMemorySource("4", "a.b", 4, true, table("c", 4)).get();
        configuration->addInMemorySource("5", "a", 5, true, table("b.c", 5)).get();
    }

    void expectEachInTurn() {
        for (int order = 1; order <= 5; ++order) {
            EXPECT_EQ(std::to_string(order), supplierOf(*configuration, "a.b.c"));
            EXPECT_EQ(order, intOf(*configuration, "a.b.c"));
            EXPECT_TRUE(test::has(*configuration, "a.b.c"));
            EXPECT_FALSE(test::has(*configuration, "b.c"));
            EXPECT_FALSE(test::has(*configuration, "c"));
            configuration->removeSource(std::to_string(order)).get();
        }
        EXPECT_FALSE(test::has(*configuration, "a.b.c"));
    }

    const std::shared_ptr<ConfigurationImpl> configuration = makeConfiguration();
};

TEST_F(TablesUnderGroups, AreAskedInOrder) {
    expectEachInTurn();
}

TEST_F(TablesUnderGroups, AreAskedInOrderWithDiagnosticsToo) {
    const test::CoreLog log;
    expectEachInTurn();
}

TEST_F(TablesUnderGroups, AreAskedInOrderAfterASourceOfTheApplication) {
    Journal journal;
    configuration
        ->addSource("scripted", "", -1, true,
                    std::make_shared<test::ScriptedSource>(journal, "scripted"))
        .get();
    expectEachInTurn();
    configuration->removeSource("scripted").get();
}

TEST(OwnTables, ShowValuesThatAreSetDirectlyInASharedSource) {
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<InMemorySource>(table("x", 1));
    configuration->addSource("shared", "net", 5, false, source).get();
    for (int i = 0; i < 1000; ++i) // the table grows and moves its entries
        source->set("key" + std::to_string(i), i);
    source->set("x", 2);
    EXPECT_EQ(2, intOf(*configuration, "net.x"));
    EXPECT_EQ(999, intOf(*configuration, "net.key999"));
}

TEST(OwnTables, LogHitsAndNoMisses) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const test::CoreLog log;
    EXPECT_ANY_THROW(configuration->get("y").get());
    EXPECT_FALSE(test::has(*configuration, "y"));
    EXPECT_EQ(1, intOf(*configuration, "x"));
    EXPECT_EQ("override", supplierOf(*configuration, "x"));
    EXPECT_THAT(log.lines(), ElementsAre("get: x from override", "get option: x from override"));
}

} // namespace
