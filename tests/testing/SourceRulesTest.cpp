/// The kit detects mistakes: each of these sources breaks a rule, and that rule reports it.
#include <connector/testing/SourceRules.hpp>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace test {

namespace {

using connector::configuration::ConfigurationSource;
using connector::configuration::OptionValue;
using connector::testing::SourceFactory;
using connector::testing::Verdict;

/// A correct writable source: it has a lock, calls a copy of the watcher without holding the lock,
/// and only after the change. Each incorrect source differs from it in one respect.
class RightSource : public ConfigurationSource {
public:
    explicit RightSource(SourceFactory::Table table) : values(table.begin(), table.end()) {}

    OptionValue get(const std::string& key) override {
        const std::lock_guard<std::recursive_mutex> lock(mutex);
        const auto entry = values.find(key);
        if (entry == values.end())
            throw std::out_of_range("unordered_map::at: key not found");
        return entry->second;
    }
    OptionValue set(const std::string& key, OptionValue value) override {
        change(key, value);
        return value;
    }
    bool has(const std::string& key) override {
        const std::lock_guard<std::recursive_mutex> lock(mutex);
        return values.count(key) != 0;
    }
    void setWatcher(Watcher newWatcher) override {
        const std::lock_guard<std::recursive_mutex> lock(mutex);
        watcher.swap(newWatcher);
    }
    std::set<std::string> keys() override {
        const std::lock_guard<std::recursive_mutex> lock(mutex);
        std::set<std::string> all;
        for (const auto& entry : values)
            all.insert(entry.first);
        return all;
    }

    virtual void change(const std::string& key, const std::optional<OptionValue>& value) {
        store(key, value);
        tell(key);
    }

protected:
    void store(const std::string& key, const std::optional<OptionValue>& value) {
        const std::lock_guard<std::recursive_mutex> lock(mutex);
        values.erase(key);
        if (value)
            values.emplace(key, *value);
    }
    void tell(const std::string& key) {
        Watcher current;
        {
            const std::lock_guard<std::recursive_mutex> lock(mutex);
            current = watcher;
        }
        if (current)
            current(key);
    }

    std::recursive_mutex mutex;
    std::map<std::string, OptionValue> values;
    Watcher watcher;
};

template <typename Source>
SourceFactory factoryOf(bool writable = true, bool changes = true) {
    SourceFactory factory;
    factory.make = [](SourceFactory::Table table) {
        return std::make_shared<Source>(std::move(table));
    };
    if (changes)
        factory.change = [](ConfigurationSource& source, const std::string& key,
                            const std::optional<OptionValue>& value) {
            dynamic_cast<RightSource&>(source).change(key, value);
        };
    factory.writable = writable;
    return factory;
}

struct HasOnlyPrefixes : RightSource {
    using RightSource::RightSource;
    bool has(const std::string& key) override {
        const auto entry = values.lower_bound(key); // also finds a prefix of a key
        return entry != values.end() && entry->first.compare(0, key.size(), key) == 0;
    }
};

struct ForgetsTheLastKey : RightSource {
    using RightSource::RightSource;
    std::set<std::string> keys() override {
        std::set<std::string> all = RightSource::keys();
        if (!all.empty())
            all.erase(std::prev(all.end()));
        return all;
    }
};

struct InventsValues : RightSource {
    using RightSource::RightSource;
    OptionValue get(const std::string& key) override {
        return has(key) ? RightSource::get(key) : false;
    }
};

struct ThrowsTheWrongType : RightSource {
    using RightSource::RightSource;
    OptionValue get(const std::string& key) override {
        if (!has(key))
            throw std::runtime_error("no such key");
        return RightSource::get(key);
    }
};

struct MakesWhatIsAsked : RightSource {
    using RightSource::RightSource;
    OptionValue get(const std::string& key) override { return values[key]; }
};

struct TellsBeforeItStores : RightSource {
    using RightSource::RightSource;
    OptionValue set(const std::string& key, OptionValue value) override {
        tell(key);
        store(key, value);
        return value;
    }
};

struct IgnoresWrites : RightSource {
    using RightSource::RightSource;
    OptionValue set(const std::string&, OptionValue value) override { return value; }
};

struct TellsNoRemovals : RightSource {
    using RightSource::RightSource;
    void change(const std::string& key, const std::optional<OptionValue>& value) override {
        store(key, value);
        if (value)
            tell(key);
    }
};

struct TellsUnderItsLock : RightSource {
    using RightSource::RightSource;
    void change(const std::string& key, const std::optional<OptionValue>& value) override {
        const std::lock_guard<std::recursive_mutex> lock(mutex);
        RightSource::change(key, value);
    }
};

struct CollectsWatchers : RightSource {
    using RightSource::RightSource;
    void setWatcher(Watcher newWatcher) override {
        if (newWatcher)
            all.push_back(std::move(newWatcher));
        else
            all.clear();
        RightSource::setWatcher([this](const std::string& key) {
            const std::vector<Watcher> copies = all;
            for (const Watcher& one : copies)
                one(key);
        });
    }
    std::vector<Watcher> all;
};

struct IgnoresEmptyWatchers : RightSource {
    using RightSource::RightSource;
    void setWatcher(Watcher newWatcher) override {
        if (newWatcher)
            RightSource::setWatcher(std::move(newWatcher));
    }
};

struct KeepsWatchers : RightSource {
    using RightSource::RightSource;
    void setWatcher(Watcher newWatcher) override {
        kept.push_back(newWatcher);
        RightSource::setWatcher(std::move(newWatcher));
    }
    std::vector<Watcher> kept;
};

struct TellsTwiceWithOneCopy : RightSource {
    using RightSource::RightSource;
    void change(const std::string& key, const std::optional<OptionValue>& value) override {
        store(key, value);
        const Watcher copy = watcher; // the second call should copy it again
        if (copy) {
            copy(key);
            copy(key);
        }
    }
};

struct SwallowsExceptions : RightSource {
    using RightSource::RightSource;
    void change(const std::string& key, const std::optional<OptionValue>& value) override {
        try {
            RightSource::change(key, value);
        } catch (...) {
        }
    }
};

/// Has its own lock, and loses an option between has and get: after every second has, because a
/// lookup calls has twice.
struct SwapsBetweenHasAndGet : RightSource {
    using RightSource::RightSource;
    bool has(const std::string& key) override {
        const bool answer = RightSource::has(key);
        if (answer && ++affirmed % 2 == 0)
            store(key, std::nullopt);
        return answer;
    }
    std::atomic<int> affirmed{0};
};

struct CallsWhoIsGone : RightSource {
    using RightSource::RightSource;
    void change(const std::string& key, const std::optional<OptionValue>& value) override {
        store(key, value);
        watcher(key); // without checking that there is one
    }
};

} // namespace

TEST(SourceRulesTest, ARightSourceKeepsAllButTheOneThatNeedsATableSource) {
    const SourceFactory factory = factoryOf<RightSource>();
    for (const auto rule :
         {connector::testing::hasAndGetAgree, connector::testing::keysAreWhatHasAffirms,
          connector::testing::getOfAMissingKeyThrows, connector::testing::questionsChangeNothing,
          connector::testing::setStoresAndTellsOrRefuses, connector::testing::changesAreTold,
          connector::testing::theWatcherRunsWithoutLocks, connector::testing::setWatcherReplaces,
          connector::testing::anEmptyWatcherSilences, connector::testing::watchersAreDestroyed,
          connector::testing::aWatcherMayReplaceItself,
          connector::testing::exceptionsOfTheWatcherPass,
          connector::testing::theSourceOutlivesItsConfiguration}) {
        const Verdict verdict = rule(factory);
        EXPECT_TRUE(verdict.applies);
        EXPECT_EQ("", verdict.broken);
    }
}

TEST(SourceRulesTest, HasThatAffirmsTooMuchIsFound) {
    EXPECT_EQ("has(\"net.\") is true for a key that the source does not have",
              connector::testing::hasAndGetAgree(factoryOf<HasOnlyPrefixes>()).broken);
}

TEST(SourceRulesTest, KeysThatAreNotListedAreFound) {
    EXPECT_EQ("keys() is {a, net} and not {a, net, net.port}",
              connector::testing::keysAreWhatHasAffirms(factoryOf<ForgetsTheLastKey>()).broken);
}

TEST(SourceRulesTest, ValuesThatAreInventedAreFound) {
    EXPECT_EQ("get of a missing key answers with a value",
              connector::testing::getOfAMissingKeyThrows(factoryOf<InventsValues>()).broken);
}

TEST(SourceRulesTest, TheWrongExceptionIsFound) {
    EXPECT_EQ("get of a missing key throws something else than std::out_of_range",
              connector::testing::getOfAMissingKeyThrows(factoryOf<ThrowsTheWrongType>()).broken);
}

TEST(SourceRulesTest, QuestionsThatAddKeysAreFound) {
    EXPECT_EQ("a question added or removed a key",
              connector::testing::questionsChangeNothing(factoryOf<MakesWhatIsAsked>()).broken);
}

TEST(SourceRulesTest, TellingTooEarlyIsFound) {
    EXPECT_EQ(
        "after set, the watcher was called before the new value of \"a\" could be read",
        connector::testing::setStoresAndTellsOrRefuses(factoryOf<TellsBeforeItStores>()).broken);
}

TEST(SourceRulesTest, WritesThatAreIgnoredAreFound) {
    EXPECT_EQ(
        "set of a source that is not writable does not throw",
        connector::testing::setStoresAndTellsOrRefuses(factoryOf<IgnoresWrites>(false)).broken);
    EXPECT_EQ(
        "the value of \"a\" cannot be read after set",
        connector::testing::setStoresAndTellsOrRefuses(factoryOf<IgnoresWrites>(true)).broken);
}

TEST(SourceRulesTest, RemovalsThatAreNotToldAreFound) {
    EXPECT_EQ("after a removal, the watcher was not called with \"net\"",
              connector::testing::changesAreTold(factoryOf<TellsNoRemovals>()).broken);
}

TEST(SourceRulesTest, ALockThatIsHeldWhileTheWatcherRunsIsFound) {
    EXPECT_EQ(
        "a watcher that waits for a thread that reads the source waits for ever",
        connector::testing::theWatcherRunsWithoutLocks(factoryOf<TellsUnderItsLock>()).broken);
}

TEST(SourceRulesTest, WatchersThatAreNotReplacedAreFound) {
    EXPECT_EQ("a watcher that was replaced was called",
              connector::testing::setWatcherReplaces(factoryOf<CollectsWatchers>()).broken);
}

TEST(SourceRulesTest, WatchersThatAreNotSilencedAreFound) {
    EXPECT_EQ("the watcher was called after an empty one had taken its place",
              connector::testing::anEmptyWatcherSilences(factoryOf<IgnoresEmptyWatchers>()).broken);
    EXPECT_EQ("a change throws when the watcher is empty",
              connector::testing::anEmptyWatcherSilences(factoryOf<CallsWhoIsGone>()).broken);
}

TEST(SourceRulesTest, WatchersThatAreKeptAreFound) {
    EXPECT_EQ("a watcher that was replaced is not destroyed",
              connector::testing::watchersAreDestroyed(factoryOf<KeepsWatchers>()).broken);
}

TEST(SourceRulesTest, WatchersThatAreCalledAfterTheySilencedTheSourceAreFound) {
    EXPECT_EQ(
        "a watcher that silenced the source was called again",
        connector::testing::aWatcherMayReplaceItself(factoryOf<TellsTwiceWithOneCopy>()).broken);
}

TEST(SourceRulesTest, ExceptionsThatAreSwallowedAreFound) {
    EXPECT_EQ(
        "what the watcher throws does not pass",
        connector::testing::exceptionsOfTheWatcherPass(factoryOf<SwallowsExceptions>()).broken);
}

TEST(SourceRulesTest, ASourceWithALockOfItsOwnLosesKeysBetweenHasAndGet) {
    const Verdict verdict =
        connector::testing::concurrentLookupsTearNothing(factoryOf<SwapsBetweenHasAndGet>());
    EXPECT_EQ(
        "a lookup failed, although another source had the key (get must not throw when the key is "
        "removed after has returned true): unordered_map::at: key not found",
        verdict.broken);
}

TEST(SourceRulesTest, CallingTheWatcherOfAConfigurationThatIsGoneIsFound) {
    EXPECT_EQ(
        "a change throws after the end of the configuration",
        connector::testing::theSourceOutlivesItsConfiguration(factoryOf<CallsWhoIsGone>()).broken);
}

TEST(SourceRulesTest, RulesAboutChangesDoNotApplyToASourceThatNeverChanges) {
    const SourceFactory factory = factoryOf<RightSource>(false, false);
    EXPECT_FALSE(connector::testing::changesAreTold(factory).applies);
    EXPECT_FALSE(connector::testing::setWatcherReplaces(factory).applies);
    EXPECT_TRUE(connector::testing::hasAndGetAgree(factory).applies);
}

} // namespace test
