/// get, getOption, has and keys.
#include "configuration/Answers.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/ScriptedSource.hpp"
#include "support/Expect.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>

namespace {

using connector::Future;
using connector::configuration::Option;
using connector::configuration::OptionValue;
using test::expectThrows;
using test::has;
using test::intOf;
using test::Journal;
using test::makeConfiguration;
using test::ScriptedSource;
using test::supplierOf;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Lookup, OfAMissingKeyFails) {
    const auto configuration = makeConfiguration();
    auto value = configuration->get("x");
    auto option = configuration->getOption("x");
    expectThrows<std::runtime_error>("No option with the specified key was found: x",
                                     [&] { value.get(); });
    expectThrows<std::runtime_error>("No option with the specified key was found: x",
                                     [&] { option.get(); });
}

TEST(Lookup, NamesTheWholeKeyInTheFailure) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("grouped", "net", 5, false, {{"port", 80}}).get();
    const std::string key("net.\xff\0.x", 8);
    expectThrows<std::runtime_error>("No option with the specified key was found: net.",
                                     [&] { configuration->get("net.").get(); });
    try {
        configuration->get(key).get();
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("No option with the specified key was found: net.\xff", error.what());
    }
}

TEST(Lookup, HasIsFalseForAMissingKey) {
    EXPECT_FALSE(has(*makeConfiguration(), "x"));
}

TEST(Lookup, FindsAValueWithItsSource) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    EXPECT_TRUE(has(*configuration, "x"));
    EXPECT_EQ(1, intOf(*configuration, "x"));
    const Option option = configuration->getOption("x").get();
    EXPECT_EQ("x", option.key);
    EXPECT_EQ("override", option.source);
    EXPECT_EQ(1, boost::get<int>(option.value));
}

TEST(Lookup, KeepsTheTypeOfAValue) {
    const auto configuration = makeConfiguration();
    configuration->set("x", std::u16string(u"text")).get();
    EXPECT_EQ(u"text", boost::get<std::u16string>(configuration->get("x").get()));
    configuration->set("x", std::vector<bool>{true, false}).get();
    EXPECT_EQ((std::vector<bool>{true, false}),
              boost::get<std::vector<bool>>(configuration->getOption("x").get().value));
}

TEST(Lookup, TakesTheFirstSourceThatHasTheKey) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 9, "default").get();
    configuration->addInMemorySource("b", "", 5, false, {{"y", 2}}).get();
    configuration->addInMemorySource("a", "", -1, false, {{"z", 1}}).get();
    EXPECT_EQ("default", supplierOf(*configuration, "x"));
    EXPECT_EQ("b", supplierOf(*configuration, "y"));
    EXPECT_EQ("a", supplierOf(*configuration, "z"));
}

TEST(Lookup, PrefersTheSmallerOrderToTheLongerGroup) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("grouped", "net", 6, false, {{"port", 2}}).get();
    configuration->addInMemorySource("plain", "", 5, false, {{"net.port", 1}}).get();
    EXPECT_EQ(1, intOf(*configuration, "net.port"));
}

TEST(Lookup, FindsAReadOnlySource) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("fixed", "", 5, true, {{"x", 1}}).get();
    EXPECT_EQ("fixed", supplierOf(*configuration, "x"));
}

TEST(Lookup, SupportsTheEmptyKey) {
    const auto configuration = makeConfiguration();
    EXPECT_FALSE(has(*configuration, ""));
    configuration->set("", 1).get();
    EXPECT_EQ(1, intOf(*configuration, ""));
    EXPECT_THAT(configuration->keys().get(), ElementsAre(""));
}

TEST(Lookup, ComparesKeysByteByByte) {
    const auto configuration = makeConfiguration();
    configuration->set(std::string("a\0b", 3), 1).get();
    EXPECT_TRUE(has(*configuration, std::string("a\0b", 3)));
    EXPECT_FALSE(has(*configuration, "a"));
    EXPECT_FALSE(has(*configuration, std::string("A\0b", 3)));
}

TEST(Lookup, ReturnsCopies) {
    const auto configuration = makeConfiguration();
    configuration->set("x", std::vector<int>{1}).get();
    OptionValue copy = configuration->get("x").get();
    boost::get<std::vector<int>>(copy)[0] = 2;
    EXPECT_EQ((std::vector<int>{1}), boost::get<std::vector<int>>(configuration->get("x").get()));
}

TEST(Lookup, ResolvesItsFutureBeforeItReturns) {
    const auto configuration = makeConfiguration();
    int answers = 0;
    configuration->get("x").then([&](Future<OptionValue>&) { ++answers; });
    configuration->getOption("x").then([&](Future<Option>&) { ++answers; });
    configuration->has("x").then([&](Future<bool>&) { ++answers; });
    configuration->keys().then([&](Future<std::set<std::string>>&) { ++answers; });
    EXPECT_EQ(4, answers);
}

TEST(Keys, AreThoseOfAllSourcesWithTheirGroupsInByteOrder) {
    const auto configuration = makeConfiguration();
    configuration->set("b", 1).get();
    configuration->addInMemorySource("grouped", "net", 5, true, {{"a", 1}}).get();
    configuration->addInMemorySource("other", "", 6, false, {{"B", 1}, {"\xc3\xa4", 1}}).get();
    EXPECT_THAT(configuration->keys().get(), ElementsAre("B", "b", "net.a", "\xc3\xa4"));
}

TEST(Keys, ListAKeyOfSeveralSourcesOnce) {
    const auto configuration = makeConfiguration();
    configuration->set("net.a", 1, "override").get();
    configuration->set("net.a", 2, "default").get();
    configuration->addInMemorySource("grouped", "net", 5, false, {{"a", 3}}).get();
    EXPECT_THAT(configuration->keys().get(), ElementsAre("net.a"));
}

TEST(Keys, IncludeANewlySetKey) {
    const auto configuration = makeConfiguration();
    EXPECT_THAT(configuration->keys().get(), IsEmpty());
    configuration->set("x", 1).get();
    EXPECT_THAT(configuration->keys().get(), ElementsAre("x"));
}

/// Lookups in sources that record their calls.
class LookupCalls : public testing::Test {
protected:
    LookupCalls() {
        configuration->addSource("net", "net", 5, false, net).get();
        configuration->addSource("all", "", 6, false, all).get();
        journal.clear();
    }

    Journal journal;
    const std::shared_ptr<ScriptedSource> net = std::make_shared<ScriptedSource>(
        journal, "net", std::map<std::string, OptionValue>{{"port", 1}});
    const std::shared_ptr<ScriptedSource> all = std::make_shared<ScriptedSource>(
        journal, "all", std::map<std::string, OptionValue>{{"net.port", 2}, {"x", 3}});
    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        makeConfiguration();
};

TEST_F(LookupCalls, GetAsksTwiceForTheKeyAndThenForTheValue) {
    configuration->get("net.port").get();
    EXPECT_THAT(journal, ElementsAre("net has port", "net has port", "net get port"));
}

TEST_F(LookupCalls, GetOptionAsksTwiceForTheKeyAndThenForTheValue) {
    configuration->getOption("net.port").get();
    EXPECT_THAT(journal, ElementsAre("net has port", "net has port", "net get port"));
}

TEST_F(LookupCalls, HasAsksOnce) {
    configuration->has("net.port").get();
    EXPECT_THAT(journal, ElementsAre("net has port"));
}

TEST_F(LookupCalls, ASourceWhoseGroupDoesNotMatchIsSkipped) {
    configuration->get("x").get();
    EXPECT_THAT(journal, ElementsAre("all has x", "all has x", "all get x"));
}

TEST_F(LookupCalls, EachSourceIsAskedForItsLocalKey) {
    std::ignore = configuration->get("net.host");
    EXPECT_THAT(journal, ElementsAre("net has host", "all has net.host"));
}

TEST_F(LookupCalls, KeysAsksEverySourceOnce) {
    configuration->keys().get();
    EXPECT_THAT(journal, ElementsAre("net keys", "all keys"));
}

TEST_F(LookupCalls, SourcesReceiveACopyOfTheCallersKey) {
    const std::string key = "x";
    const auto isCopy = [&key](const std::string& local) { EXPECT_NE(&key, &local); };
    all->onHas = all->onGet = all->onSet = isCopy;
    configuration->get(key).get();
    configuration->getOption(key).get();
    configuration->has(key).get();
    configuration->set(key, 4, "all").get();
    EXPECT_EQ(12u, journal.size()); // 3 + 3 + 1 and set, has, has, get, set returns
}

TEST_F(LookupCalls, AnExceptionFromHasOfASourceIsThrown) {
    all->onHas = [](const std::string&) { throw std::range_error("no answer"); };
    EXPECT_THROW(std::ignore = configuration->get("x"), std::range_error);
    EXPECT_THROW(std::ignore = configuration->getOption("x"), std::range_error);
    EXPECT_THROW(std::ignore = configuration->has("x"), std::range_error);
    all->onHas = nullptr;
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(LookupCalls, AnExceptionFromGetOfASourceIsThrown) {
    all->onGet = [](const std::string&) { throw std::range_error("no value"); };
    EXPECT_THROW(std::ignore = configuration->get("x"), std::range_error);
    EXPECT_THROW(std::ignore = configuration->getOption("x"), std::range_error);
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(LookupCalls, AnExceptionFromKeysOfASourceIsThrown) {
    all->onKeys = [](const std::string&) { throw std::range_error("no keys"); };
    EXPECT_THROW(std::ignore = configuration->keys(), std::range_error);
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

} // namespace
