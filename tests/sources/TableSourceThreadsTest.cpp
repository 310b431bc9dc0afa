/// Tables that are replaced during concurrent operations, also run under the thread sanitizer.
#include "configuration/ScriptedSource.hpp"
#include "sources/Shown.hpp"
#include "sources/Watching.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/sources/TableSource.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace test {

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::sources::Table;
using connector::sources::TableSource;

constexpr int rounds = 3000;

/// A thread that repeats an action until it is destroyed.
class Repeating {
public:
    template <typename Action>
    explicit Repeating(Action action)
        : thread([this, action] {
              for (int round = 0; !isOver.load(); ++round)
                  action(round);
          }) {}
    ~Repeating() {
        isOver.store(true);
        thread.join();
    }

private:
    std::atomic<bool> isOver{false};
    std::thread thread;
};

} // namespace

class TableSourceThreadsTest : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        configuration->addSource("table", "", 5, true, source).get();
        configuration->addInMemorySource("behind", "", 9, true, {{"a", -1}}).get();
        if (GetParam()) // then every source is queried in turn
            configuration->addSource("other", "", 1, true, other).get();
    }

    Journal journal;
    const std::shared_ptr<ScriptedSource> other =
        std::make_shared<ScriptedSource>(journal, "other");
    const std::shared_ptr<TableSource> source = std::make_shared<TableSource>(Table{{"a", 0}});
    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_P(TableSourceThreadsTest, AReaderAlwaysFindsAKeyThatAnotherSourceHas) {
    const Repeating replacing([this](int round) {
        source->replace(round % 2 == 0 ? Table{} : Table{{"a", round}});
    });
    for (int round = 0; round < rounds; ++round) {
        EXPECT_NO_THROW(configuration->get("a").get());
        EXPECT_NO_THROW(configuration->getOption("a").get());
        configuration->explain("a");
        EXPECT_TRUE(configuration->has("a").get());
    }
}

TEST_P(TableSourceThreadsTest, ReadersNeverGoBack) {
    const Repeating replacing([this](int round) { source->replace({{"a", round}}); });
    int last = 0;
    for (int round = 0; round < rounds; ++round) {
        const int value = boost::get<int>(configuration->get("a").get());
        ASSERT_LE(last, value);
        last = value;
    }
}

TEST_P(TableSourceThreadsTest, WatchersReadTheConfigurationWhileOthersWrite) {
    std::vector<Watched> watched;
    const Repeating replacing([this](int round) { source->replace({{"a", round}, {"b", round}}); });
    const Repeating writing([this](int round) { configuration->set("b", round).get(); });
    for (int round = 0; round < rounds / 10; ++round) {
        watched.push_back(watch(*configuration, round % 2 == 0 ? "a" : "b"));
        if (watched.size() > 10)
            watched.clear();
    }
}

TEST_P(TableSourceThreadsTest, SourcesAreAddedAndRemovedMeanwhile) {
    const Repeating replacing([this](int round) { source->replace({{"a", round}}); });
    const Watched a = watch(*configuration, "a");
    for (int round = 0; round < rounds / 10; ++round) {
        configuration->removeSource("table").get();
        EXPECT_EQ(OptionValue(-1), configuration->get("a").get());
        configuration->addSource("table", "", 5, true, source).get();
    }
}

TEST_P(TableSourceThreadsTest, ConfigurationsComeAndGo) {
    const Repeating replacing([this](int round) { source->replace({{"a", round}}); });
    for (int round = 0; round < rounds / 10; ++round) {
        auto mortal = std::make_shared<ConfigurationImpl>();
        mortal->addSource("table", "", 5, true, source).get();
        const Watched a = watch(*mortal, "a");
        if (round % 2 == 0)
            mortal->removeSource("table").get();
        mortal.reset();
    }
}

TEST_P(TableSourceThreadsTest, AReplacedTableIsSeenByOtherThreads) {
    for (int round = 0; round < 100; ++round) {
        source->replace({{"a", round}});
        std::thread([&] { EXPECT_EQ(OptionValue(round), configuration->get("a").get()); }).join();
    }
}

TEST_P(TableSourceThreadsTest, SeveralThreadsReplaceAndTheLastTableIsTold) {
    const Watched a = watch(*configuration, "a");
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([this, thread] {
            for (int round = 0; round < 300; ++round)
                source->replace({{"a", thread * 1000 + round}});
        });
    for (std::thread& thread : threads)
        thread.join();
    source->replace({{"a", -7}});
    EXPECT_EQ(OptionValue(-7), a.values->all().back());
}

INSTANTIATE_TEST_SUITE_P(Lookups, TableSourceThreadsTest, testing::Values(false, true),
                         [](const auto& info) { return info.param ? "OneByOne" : "InTables"; });

} // namespace test
