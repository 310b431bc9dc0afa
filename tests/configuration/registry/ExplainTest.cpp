/// explain: what every source answers about a key.
#include "configuration/Answers.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/ScriptedSource.hpp"
#include "support/LogCapture.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using connector::configuration::OptionValue;
using connector::configuration::SourceAnswer;
using test::Journal;
using test::makeConfiguration;
using test::ScriptedSource;
using test::sourcesOf;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Explain, NamesAllSourcesInTheOrderOfConsultation) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("a", "", 5, false, {}).get();
    configuration->addInMemorySource("b", "net", 5, false, {}).get();
    configuration->addInMemorySource("c", "", -1, false, {}).get();
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("c", "override", "b", "a", "default"));
}

TEST(Explain, DescribesASource) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("a", "net", 5, true, {{"port", 80}}).get();
    const SourceAnswer answer = configuration->explain("net.port")[1];
    EXPECT_EQ("a", answer.name);
    EXPECT_EQ("net.", answer.group);
    EXPECT_EQ(5, answer.order);
    EXPECT_TRUE(answer.readOnly);
    EXPECT_TRUE(answer.servesKey);
    ASSERT_TRUE(answer.value.has_value());
    EXPECT_EQ(80, boost::get<int>(*answer.value));
}

TEST(Explain, IncludesASourceWhoseGroupDoesNotMatch) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("a", "net", 5, false, {{"port", 80}}).get();
    const SourceAnswer answer = configuration->explain("port")[1];
    EXPECT_EQ("a", answer.name);
    EXPECT_FALSE(answer.servesKey);
    EXPECT_FALSE(answer.value.has_value());
}

TEST(Explain, DistinguishesServingAKeyFromHavingIt) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto answers = configuration->explain("x");
    EXPECT_TRUE(answers[0].servesKey);
    EXPECT_TRUE(answers[0].value.has_value());
    EXPECT_TRUE(answers[1].servesKey);
    EXPECT_FALSE(answers[1].value.has_value());
}

TEST(Explain, ShowsHiddenValues) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    configuration->set("x", 2, "default").get();
    const auto answers = configuration->explain("x");
    EXPECT_EQ(1, boost::get<int>(*answers[0].value));
    EXPECT_EQ(2, boost::get<int>(*answers[1].value));
}

TEST(Explain, PutsTheEffectiveValueFirst) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 2, "default").get();
    configuration->addInMemorySource("a", "", 5, true, {{"x", 1}}).get();
    const auto answers = configuration->explain("x");
    const auto first = std::find_if(answers.begin(), answers.end(),
                                    [](const SourceAnswer& answer) { return answer.value; });
    ASSERT_NE(answers.end(), first);
    EXPECT_EQ(test::supplierOf(*configuration, "x"), first->name);
    EXPECT_EQ(test::intOf(*configuration, "x"), boost::get<int>(*first->value));
}

TEST(Explain, ShowsNoValueForAMissingKey) {
    const auto answers = makeConfiguration()->explain("x");
    EXPECT_EQ(2u, answers.size());
    for (const SourceAnswer& answer : answers)
        EXPECT_FALSE(answer.value.has_value());
}

TEST(Explain, WithoutSourcesIsEmpty) {
    const auto configuration = makeConfiguration();
    configuration->removeSource("override").get();
    configuration->removeSource("default").get();
    EXPECT_THAT(configuration->explain("x"), IsEmpty());
}

TEST(Explain, AsksEachServingSourceForItsLocalKey) {
    Journal journal;
    const auto configuration = makeConfiguration();
    const auto net = std::make_shared<ScriptedSource>(
        journal, "net", std::map<std::string, OptionValue>{{"port", 1}});
    const auto other = std::make_shared<ScriptedSource>(journal, "other");
    const auto all = std::make_shared<ScriptedSource>(journal, "all");
    configuration->addSource("net", "net", -3, false, net).get();
    configuration->addSource("other", "other", -2, false, other).get();
    configuration->addSource("all", "", -1, false, all).get();
    journal.clear();
    configuration->explain("net.port");
    EXPECT_THAT(journal, ElementsAre("net has port", "net get port", "all has net.port"));
}

TEST(Explain, ThrowsWhatASourceThrows) {
    Journal journal;
    const auto configuration = makeConfiguration();
    const auto source = std::make_shared<ScriptedSource>(journal, "a");
    configuration->addSource("a", "", -1, false, source).get();
    source->onHas = [](const std::string&) { throw std::range_error("no answer"); };
    EXPECT_THROW(configuration->explain("x"), std::range_error);
    source->onHas = nullptr;
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST(Explain, ChangesNothingAndLogsNothing) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const test::CoreLog log;
    configuration->explain("x");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(configuration->keys().get(), ElementsAre("x"));
}

} // namespace
