/// A source whose answer to has changes from one call to the next.
#include "configuration/Answers.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/ScriptedSource.hpp"
#include "support/Expect.hpp"
#include "support/LogCapture.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <tuple>

namespace {

using test::expectThrows;
using test::Journal;
using test::ScriptedSource;
using testing::ElementsAre;

class ChangingSource : public testing::Test {
protected:
    ChangingSource() {
        configuration->addSource("changing", "net", -1, false, source).get();
        journal.clear();
    }

    Journal journal;
    const std::shared_ptr<ScriptedSource> source = std::make_shared<ScriptedSource>(
        journal, "changing", std::map<std::string, ScriptedSource::OptionValue>{{"x", 1}});
    std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        test::makeConfiguration();
};

TEST_F(ChangingSource, MakesGetThrow) {
    source->answersOfHas = {true, false};
    expectThrows<std::runtime_error>("No option value for key: net.x",
                                     [&] { configuration->get("net.x").get(); });
    EXPECT_THAT(journal, ElementsAre("changing has x", "changing has x"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(ChangingSource, MakesGetOptionThrow) {
    source->answersOfHas = {true, false};
    expectThrows<std::runtime_error>("No option for key: net.x",
                                     [&] { configuration->getOption("net.x").get(); });
    EXPECT_THAT(journal, ElementsAre("changing has x", "changing has x"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(ChangingSource, ThatDeniesTheKeyAtFirstIsNotAskedAgain) {
    source->answersOfHas = {false};
    auto value = configuration->get("net.x");
    expectThrows<std::runtime_error>("No option with the specified key was found: net.x",
                                     [&] { value.get(); });
    EXPECT_THAT(journal, ElementsAre("changing has x"));
}

TEST_F(ChangingSource, ThatDeniesTheKeyLaterLeavesItToTheNextSource) {
    configuration->set("net.x", 2, "default").get();
    source->answersOfHas = {true, false};
    EXPECT_EQ(2, test::intOf(*configuration, "net.x"));
    source->answersOfHas = {true, false};
    EXPECT_EQ("default", test::supplierOf(*configuration, "net.x"));
}

TEST_F(ChangingSource, SuppliesTheValueWhenItHasTheKeyAtTheSecondCall) {
    configuration->set("net.x", 2, "default").get();
    source->answersOfHas = {false, true};
    EXPECT_EQ(1, test::intOf(*configuration, "net.x"));
}

TEST_F(ChangingSource, MakesTheLookupThrowWhatItsGetThrows) {
    source->answersOfHas = {true, true};
    EXPECT_THROW(std::ignore = configuration->get("net.missing"), std::out_of_range);
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(ChangingSource, MakesWatchOptionThrowAndLeavesTheStreamRegistered) {
    source->answersOfHas = {true, false};
    expectThrows<std::runtime_error>("No option value for key: net.x",
                                     [&] { configuration->watchOption("net.x"); });
    EXPECT_TRUE(test::mutexIsFree(*configuration));

    const test::CoreLog log; // nothing else shows the stream: no pointer to it exists
    source->report("x");
    EXPECT_THAT(log.lines(), testing::Contains("notifying watcher: net.x").Times(1));
}

TEST_F(ChangingSource, MakesSetThrowAfterTheValueWasWritten) {
    source->answersOfHas = {true, false};
    expectThrows<std::runtime_error>("No option value for key: net.x",
                                     [&] { configuration->set("net.x", 5, "changing").get(); });
    EXPECT_EQ(5, test::intOf(*configuration, "net.x"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(ChangingSource, MakesItsWatcherThrow) {
    source->answersOfHas = {true, false};
    expectThrows<std::runtime_error>("No option value for key: net.x",
                                     [&] { source->report("x"); });
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(ChangingSource, MakesTheRemovalOfAnotherSourceThrowAfterwards) {
    configuration->addInMemorySource("other", "", 5, false, {{"net.x", 3}}).get();
    source->answersOfHas = {true, false};
    expectThrows<std::runtime_error>("No option value for key: net.x",
                                     [&] { configuration->removeSource("other").get(); });
    EXPECT_FALSE(configuration->removeSource("other").get());
}

} // namespace
