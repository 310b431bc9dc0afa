#include "configuration/ScriptedSource.hpp"
#include "sources/Shown.hpp"
#include "sources/Watching.hpp"
#include "support/Expect.hpp"
#include "support/LogCapture.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/sources/TableSource.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace test {

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::sources::Table;
using connector::sources::TableChange;
using connector::sources::TableSource;

using Keys = std::vector<std::string>;

/// A decorator that forwards every query to another source.
class Decorator : public connector::configuration::ConfigurationSource {
public:
    explicit Decorator(std::shared_ptr<ConfigurationSource> newInner)
        : inner(std::move(newInner)) {}

    OptionValue get(const std::string& key) override { return inner->get(key); }
    OptionValue set(const std::string& key, OptionValue value) override {
        return inner->set(key, std::move(value));
    }
    bool has(const std::string& key) override {
        const bool answer = inner->has(key);
        if (afterHas)
            afterHas();
        return answer;
    }
    void setWatcher(Watcher watcher) override { inner->setWatcher(std::move(watcher)); }
    std::set<std::string> keys() override { return inner->keys(); }

    std::function<void()> afterHas;

private:
    const std::shared_ptr<ConfigurationSource> inner;
};

} // namespace

class TableSourceTest : public testing::Test {
protected:
    /// Records the keys that the source reports.
    void record() {
        source->setWatcher([this](const std::string& key) { told.push_back(key); });
    }

    Journal journal; // outlives the sources that write to it
    const std::shared_ptr<TableSource> source =
        std::make_shared<TableSource>(Table{{"a", 1}, {"b", 2}, {"c", 3}});
    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    Keys told;
};

TEST_F(TableSourceTest, AnswersFromTheInitialTable) {
    EXPECT_EQ(OptionValue(1), source->get("a"));
    EXPECT_TRUE(source->has("c"));
    EXPECT_FALSE(source->has("d"));
    EXPECT_EQ((std::set<std::string>{"a", "b", "c"}), source->keys());
    EXPECT_EQ(3u, source->table()->size());
}

TEST_F(TableSourceTest, AnEmptyOneHasNothing) {
    const TableSource empty;
    EXPECT_TRUE(empty.table()->empty());
}

TEST_F(TableSourceTest, GetOfAMissingKeyThrows) {
    expectThrows<std::out_of_range>("unordered_map::at: key not found",
                                    [&] { source->get("missing"); });
}

TEST_F(TableSourceTest, SetIsRefusedAndChangesNothing) {
    expectThrows<std::runtime_error>("Source does not support writing",
                                     [&] { source->set("a", 7); });
    EXPECT_EQ(OptionValue(1), source->get("a"));
}

TEST_F(TableSourceTest, ReplaceAnswersWhatChangedInOrder) {
    const TableChange change =
        source->replace({{"z", 1}, {"d", 1}, {"b", 7}, {"c", 3}, {"a", std::string("1")}});
    EXPECT_EQ((Keys{"d", "z"}), change.added);
    EXPECT_EQ((Keys{"a", "b"}), change.changed);
    EXPECT_EQ(Keys{}, change.removed);
    EXPECT_EQ((Keys{"a", "b", "c", "d", "z"}), source->replace({}).removed);
}

TEST_F(TableSourceTest, ReplaceTellsEachKeyOnceInOrderAfterTheSwap) {
    Keys seen;
    source->setWatcher([&](const std::string& key) {
        seen.push_back(key + (source->has(key) ? " is there" : " is gone"));
    });
    source->replace({{"0", 1}, {"a", 7}, {"c", 3}});
    EXPECT_EQ((Keys{"0 is there", "a is there", "b is gone"}), seen);
}

TEST_F(TableSourceTest, AnEqualTableTellsNobody) {
    record();
    const auto before = source->table();
    EXPECT_TRUE(source->replace(Table(*before)).empty());
    EXPECT_EQ(Keys{}, told);
}

TEST_F(TableSourceTest, ANanCountsAsChanged) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    source->replace({{"nan", nan}, {"nans", std::vector<double>{nan}}, {"zero", 0.0}});
    record();
    EXPECT_EQ((Keys{"nan", "nans"}),
              source->replace({{"nan", nan}, {"nans", std::vector<double>{nan}}, {"zero", -0.0}})
                  .changed);
    EXPECT_EQ((Keys{"nan", "nans"}), told);
}

TEST_F(TableSourceTest, TheFirstExceptionPassesAfterAllWereTold) {
    source->setWatcher([this](const std::string& key) {
        told.push_back(key);
        throw std::range_error("watcher of " + key);
    });
    expectThrows<std::range_error>("watcher of a", [&] { source->replace({}); });
    EXPECT_EQ((Keys{"a", "b", "c"}), told);
    EXPECT_FALSE(source->has("a"));
}

TEST_F(TableSourceTest, AnEmptyWatcherSilencesAtOnce) {
    source->setWatcher([this](const std::string& key) {
        told.push_back(key);
        source->setWatcher({});
    });
    source->replace({});
    EXPECT_EQ(Keys{"a"}, told);
}

TEST_F(TableSourceTest, AWatcherMayReplaceTheTable) {
    source->setWatcher([this](const std::string& key) {
        told.push_back(key);
        if (key == "a")
            source->replace({{"b", 9}});
    });
    source->replace({{"a", 7}, {"b", 2}, {"c", 3}}); // the watcher removes a and c, changes b
    EXPECT_EQ((Keys{"a", "a", "b", "c"}), told);
    EXPECT_EQ(OptionValue(9), source->get("b"));
}

TEST_F(TableSourceTest, AReplacedWatcherIsDestroyedWithoutALock) {
    struct Reader {
        TableSource* source;
        ~Reader() { source->setWatcher({}); } // would deadlock if a lock were held
    };
    auto reader = std::make_shared<Reader>(Reader{source.get()});
    source->setWatcher([reader](const std::string&) {});
    reader.reset();
    record();
    source->replace({});
    EXPECT_EQ(Keys{}, told); // the destructor of the old watcher removed the new one
}

TEST_F(TableSourceTest, TheTableOfBeforeStaysWithWhoHoldsIt) {
    const auto before = source->table();
    source->replace({});
    EXPECT_EQ(3u, before->size());
}

TEST_F(TableSourceTest, NobodyHoldsTheTableOfBeforeWhenReplaceIsOver) {
    configuration->addSource("table", "g", 5, true, source).get();
    configuration->get("g.a").get();
    const std::weak_ptr<const Table> before = source->table();
    source->replace({{"a", 2}});
    EXPECT_TRUE(before.expired());
}

TEST_F(TableSourceTest, AWatcherOfTheConfigurationHearsOfEveryChange) {
    configuration->addSource("table", "g", 5, true, source).get();
    const Watched a = watch(*configuration, "g.a");
    const Watched d = watch(*configuration, "g.d");
    source->replace({{"a", 7}, {"d", 8}});
    EXPECT_EQ((std::vector<OptionValue>{1, 7}), a.values->all());
    EXPECT_EQ((std::vector<OptionValue>{8}), d.values->all());
}

TEST_F(TableSourceTest, ALookupSeesTheNewTable) {
    configuration->addSource("table", "", 5, true, source).get();
    EXPECT_EQ(OptionValue(1), configuration->get("a").get());
    source->replace({{"a", 7}});
    EXPECT_EQ(OptionValue(7), configuration->get("a").get());
    EXPECT_EQ(OptionValue(7), configuration->getOption("a").get().value);
    EXPECT_FALSE(configuration->has("b").get());
    EXPECT_EQ((std::set<std::string>{"a"}), configuration->keys().get());
}

TEST_F(TableSourceTest, HasAndGetOfOneLookupAgree) {
    const auto decorator = std::make_shared<Decorator>(source);
    configuration->addSource("decorator", "", 5, true, decorator).get();
    decorator->afterHas = [this] { source->replace({}); };
    EXPECT_EQ(OptionValue(1), configuration->get("a").get());
    EXPECT_FALSE(configuration->has("a").get());
}

TEST_F(TableSourceTest, HasAndGetOfOneLookupAgreeBehindASourceOfOthers) {
    const auto other = std::make_shared<ScriptedSource>(journal, "other");
    configuration->addSource("table", "", 5, true, source).get();
    configuration->addSource("other", "", 1, true, other).get();
    int asked = 0;
    other->onHas =
        [&](const std::string&) { // the second query is for the value, after the table's has
            if (++asked == 2)
                source->replace({});
        };
    EXPECT_EQ(OptionValue(1), configuration->get("a").get());
    expectThrows<std::runtime_error>("No option with the specified key was found: a",
                                     [&] { configuration->get("a").get(); });
}

TEST_F(TableSourceTest, HasAndGetOfOneLookupAgreeThroughAnotherConfiguration) {
    const auto inner = std::make_shared<ConfigurationImpl>();
    inner->addSource("table", "", 5, true, source).get();
    const auto bridge = std::make_shared<ScriptedSource>(
        journal, "bridge", std::map<std::string, OptionValue>{{"a", false}});
    configuration->addSource("bridge", "", 5, true, bridge).get();
    std::vector<OptionValue> seen;
    bridge->onHas = [&](const std::string& key) { seen.push_back(inner->get(key).get()); };
    bridge->onGet = [&](const std::string& key) {
        source->replace({});
        seen.push_back(inner->get(key).get());
    };
    configuration->get("a").get();
    EXPECT_EQ((std::vector<OptionValue>{1, 1, 1}), seen);
    EXPECT_FALSE(inner->has("a").get());
}

TEST_F(TableSourceTest, SeveralOptionsAreReadFromOneTable) {
    const auto other = std::make_shared<ScriptedSource>(journal, "other");
    configuration->addSource("table", "", 5, true, source).get();
    configuration->addSource("other", "", 1, true, other).get();
    other->onHas = [&](const std::string& key) {
        if (key == "b")
            source->replace({{"a", 7}, {"b", 8}});
    };
    const auto options = configuration->optionsOf({"a", "b"});
    ASSERT_EQ(2u, options.size());
    EXPECT_EQ(OptionValue(1), options[0].value);
    EXPECT_EQ(OptionValue(2), options[1].value);
    EXPECT_EQ(OptionValue(8), configuration->optionsBelow("b").at(0).value);
}

TEST_F(TableSourceTest, ALookupThatIsLoggedAgrees) {
    configuration->addSource("table", "", 5, true, source).get();
    const CoreLog log;
    EXPECT_EQ(OptionValue(1), configuration->get("a").get());
    source->replace({{"a", 2}});
    EXPECT_EQ(OptionValue(2), configuration->get("a").get());
}

TEST_F(TableSourceTest, ASourceInTwoConfigurationsTellsTheLastOne) {
    const auto other = std::make_shared<ConfigurationImpl>();
    configuration->addSource("table", "", 5, true, source).get();
    other->addSource("table", "", 5, true, source).get();
    const Watched first = watch(*configuration, "a");
    const Watched last = watch(*other, "a");
    source->replace({{"a", 7}});
    EXPECT_EQ((std::vector<OptionValue>{1}), first.values->all());
    EXPECT_EQ((std::vector<OptionValue>{1, 7}), last.values->all());
    EXPECT_EQ(OptionValue(7), configuration->get("a").get());
}

TEST_F(TableSourceTest, ARemovedSourceOutlivesItsConfiguration) {
    auto mortal = std::make_shared<ConfigurationImpl>();
    mortal->addSource("table", "", 5, true, source).get();
    mortal->removeSource("table").get();
    mortal.reset();
    EXPECT_EQ((Keys{"a", "b", "c"}), source->replace({}).removed);
}

TEST_F(TableSourceTest, AConfigurationThatLosesItsLastOwnerInAWatcherGoesAfterIt) {
    auto mortal = std::make_shared<ConfigurationImpl>();
    const std::weak_ptr<ConfigurationImpl> observed = mortal;
    mortal->addSource("table", "", 5, true, source).get();
    const Watched a = watch(*mortal, "a");

    // Subscribed after the source was added, so this runs while the source's watcher runs.
    class Releaser : public ValueList {
    public:
        explicit Releaser(std::shared_ptr<ConfigurationImpl>& newOwner) : owner(newOwner) {}
        void onNext(const OptionValue& value) override {
            ValueList::onNext(value);
            if (value == OptionValue(7))
                owner.reset();
        }

    private:
        std::shared_ptr<ConfigurationImpl>& owner;
    };
    const auto stream = mortal->watchOption("a");
    stream->subscribe(std::make_shared<Releaser>(mortal));
    source->replace({{"a", 7}});
    EXPECT_TRUE(observed.expired());
    EXPECT_EQ((std::vector<OptionValue>{1, 7}), a.values->all());
}

TEST_F(TableSourceTest, AConfigurationOnTheStackHearsOfChanges) {
    ConfigurationImpl onStack;
    onStack.addSource("table", "", 5, true, source).get();
    source->replace({{"a", 7}});
    EXPECT_EQ(OptionValue(7), onStack.get("a").get());
}

TEST_F(TableSourceTest, WhatIsReplacedWhileTheSourceIsAddedIsTold) {
    const Watched a = watch(*configuration, "a");
    const Watched b = watch(*configuration, "b");
    const auto stream = configuration->watchOption("a");
    class Replacer : public ValueList {
    public:
        explicit Replacer(TableSource& newSource) : source(newSource) {}
        void onNext(const OptionValue& value) override {
            ValueList::onNext(value);
            if (value == OptionValue(1))
                source.replace({{"b", 7}});
        }

    private:
        TableSource& source;
    };
    stream->subscribe(std::make_shared<Replacer>(*source));
    configuration->addInMemorySource("behind", "", 9, true, {{"a", 9}}).get();
    configuration->addSource("table", "", 5, true, source).get();
    EXPECT_EQ(OptionValue(9), a.values->all().back());
    EXPECT_EQ(OptionValue(7), b.values->all().back());
}

} // namespace test
