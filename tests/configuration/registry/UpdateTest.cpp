/// set, with and without the name of a source.
#include "configuration/Answers.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/ScriptedSource.hpp"
#include "support/Expect.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using connector::Future;
using connector::configuration::OptionValue;
using test::expectThrows;
using test::intIn;
using test::intOf;
using test::Journal;
using test::makeConfiguration;
using test::ScriptedSource;
using test::supplierOf;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Set, WritesToOverrideAndReturnsTheNewValueOfANewKey) {
    const auto configuration = makeConfiguration();
    EXPECT_EQ(1, intIn(configuration->set("x", 1)));
    EXPECT_EQ("override", supplierOf(*configuration, "x"));
    EXPECT_EQ(1, intOf(*configuration, "x"));
}

TEST(Set, ReturnsThePreviousValueOfAKnownKey) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    EXPECT_EQ(1, intIn(configuration->set("x", 2)));
    EXPECT_EQ(2, intIn(configuration->set("x", 3)));
    EXPECT_EQ(3, intOf(*configuration, "x"));
}

TEST(Set, ReturnsThePreviousValueOfItsTargetNotTheEffectiveValue) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1, "default").get();
    EXPECT_EQ(2, intIn(configuration->set("x", 2))); // new in "override"
    EXPECT_EQ(1, intIn(configuration->set("x", 3, "default")));
}

TEST(Set, MayChangeTheTypeOfAnOption) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    configuration->set("x", std::string("text")).get();
    EXPECT_EQ("text", boost::get<std::string>(configuration->get("x").get()));
}

TEST(Set, ResolvesItsFutureBeforeItReturns) {
    bool answered = false;
    makeConfiguration()->set("x", 1).then([&](Future<OptionValue>&) { answered = true; });
    EXPECT_TRUE(answered);
}

TEST(Set, WritesToTheFirstWritableSourceEvenIfAnotherHasTheKey) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 9, "default").get();
    configuration->addInMemorySource("first", "", -1, false, {}).get();
    configuration->addInMemorySource("fixed", "", -2, true, {}).get();
    configuration->set("x", 1).get();
    EXPECT_EQ("first", supplierOf(*configuration, "x"));
}

TEST(Set, SkipsSourcesWhoseGroupDoesNotMatch) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("net", "net", -1, false, {}).get();
    configuration->set("x", 1).get();
    configuration->set("net.port", 2).get();
    EXPECT_EQ("override", supplierOf(*configuration, "x"));
    EXPECT_EQ("net", supplierOf(*configuration, "net.port"));
}

TEST(Set, WritesToTheNextWritableSourceWhenOverrideIsRemoved) {
    const auto configuration = makeConfiguration();
    configuration->removeSource("override").get();
    configuration->set("x", 1).get();
    EXPECT_EQ("default", supplierOf(*configuration, "x"));
}

TEST(Set, WithoutAnySourceFails) {
    const auto configuration = makeConfiguration();
    configuration->removeSource("override").get();
    configuration->removeSource("default").get();
    auto result = configuration->set("x", 1);
    expectThrows<std::runtime_error>("No writable configuration source for key: x",
                                     [&] { result.get(); });
}

TEST(Set, WithoutAMatchingWritableSourceFails) {
    const auto configuration = makeConfiguration();
    configuration->removeSource("override").get();
    configuration->removeSource("default").get();
    configuration->addInMemorySource("fixed", "", 5, true, {{"x", 1}}).get();
    configuration->addInMemorySource("net", "net", 5, false, {{"x", 1}}).get();
    auto result = configuration->set("x", 2);
    expectThrows<std::runtime_error>("No writable configuration source for key: x",
                                     [&] { result.get(); });
    EXPECT_EQ(1, intOf(*configuration, "x"));
    EXPECT_THAT(configuration->keys().get(), ElementsAre("net.x", "x"));
}

TEST(Set, StaysHiddenBehindAReadOnlySource) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("fixed", "", -1, true, {{"x", 1}}).get();
    EXPECT_EQ(2, intIn(configuration->set("x", 2)));
    EXPECT_EQ(1, intOf(*configuration, "x"));
    configuration->removeSource("fixed").get();
    EXPECT_EQ(2, intOf(*configuration, "x"));
}

TEST(SetInNamedSource, WritesToTheNamedSource) {
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    EXPECT_EQ(2, intIn(configuration->set("x", 2, "default")));
    EXPECT_EQ(1, intOf(*configuration, "x"));
    configuration->removeSource("override").get();
    EXPECT_EQ(2, intOf(*configuration, "x"));
}

TEST(SetInNamedSource, FailsForAnUnknownSource) {
    const auto configuration = makeConfiguration();
    auto result = configuration->set("x", 1, "unknown");
    expectThrows<std::runtime_error>("Source not found or not writable: x, unknown",
                                     [&] { result.get(); });
    EXPECT_THAT(configuration->keys().get(), IsEmpty());
}

TEST(SetInNamedSource, FailsForAReadOnlySource) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("fixed", "", 5, true, {{"x", 1}}).get();
    auto result = configuration->set("x", 2, "fixed");
    expectThrows<std::runtime_error>("Source not found or not writable: x, fixed",
                                     [&] { result.get(); });
    EXPECT_EQ(1, intOf(*configuration, "x"));
}

TEST(SetInNamedSource, FailsWhenTheGroupDoesNotMatch) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("net", "net", 5, false, {}).get();
    auto result = configuration->set("x", 2, "net");
    expectThrows<std::runtime_error>("Source not found or not writable: x, net",
                                     [&] { result.get(); });
    EXPECT_THAT(configuration->keys().get(), IsEmpty());
}

TEST(SetInNamedSource, FailsForARemovedSource) {
    const auto configuration = makeConfiguration();
    configuration->removeSource("default").get();
    auto result = configuration->set("x", 2, "default");
    expectThrows<std::runtime_error>("Source not found or not writable: x, default",
                                     [&] { result.get(); });
}

TEST(SetInNamedSource, NeverFallsBackToAnotherSource) {
    const auto configuration = makeConfiguration();
    EXPECT_ANY_THROW(configuration->set("x", 2, "").get());
    EXPECT_THAT(configuration->keys().get(), IsEmpty());
}

/// Writes to a source that records its calls. It has the group "net" and is consulted first.
class SetCalls : public testing::Test {
protected:
    SetCalls() {
        configuration->addSource("net", "net", -1, false, source).get();
        journal.clear();
    }

    Journal journal;
    std::shared_ptr<ScriptedSource> source = std::make_shared<ScriptedSource>(journal, "net");
    std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        makeConfiguration();
};

TEST_F(SetCalls, TheLocalKeyIsWrittenAndThenLookedUpForSubscribers) {
    configuration->set("net.port", 80).get();
    EXPECT_THAT(journal, ElementsAre("net set port", "net has port", "net has port", "net get port",
                                     "net set returns"));
    EXPECT_EQ(80, boost::get<int>(source->values.at("port")));
}

TEST_F(SetCalls, ANamedSourceIsWrittenInTheSameWay) {
    configuration->set("net.port", 80, "net").get();
    EXPECT_THAT(journal, ElementsAre("net set port", "net has port", "net has port", "net get port",
                                     "net set returns"));
}

TEST_F(SetCalls, TheResultOfTheSourceIsReturned) {
    source->resultOfSet = 77;
    EXPECT_EQ(77, intIn(configuration->set("net.port", 80)));
    EXPECT_EQ(77, intIn(configuration->set("net.port", 81, "net")));
}

TEST_F(SetCalls, OtherSourcesAreNotCalled) {
    configuration->set("x", 1).get();
    EXPECT_ANY_THROW(configuration->set("x", 1, "net").get());
    EXPECT_ANY_THROW(configuration->set("net.x", 1, "unknown").get());
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(SetCalls, AFailedSetNotifiesNoSubscriber) {
    configuration->set("x", 1).get();
    const auto subscriber = test::watch(*configuration, "x");
    EXPECT_ANY_THROW(configuration->set("x", 2, "net").get());
    EXPECT_THAT(subscriber->values(), ElementsAre(1));
}

TEST_F(SetCalls, AnExceptionFromTheSourceIsThrown) {
    source->onSet = [](const std::string&) { throw std::range_error("refused"); };
    expectThrows<std::range_error>("refused", [&] { configuration->set("net.port", 80).get(); });
    expectThrows<std::range_error>("refused",
                                   [&] { configuration->set("net.port", 80, "net").get(); });
    EXPECT_FALSE(test::has(*configuration, "net.port"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST_F(SetCalls, ASourceThatASubscriberRemovesIsKeptAlive) {
    test::watch(*configuration, "net.port", [&](int) { configuration->removeSource("net").get(); });
    journal.clear();
    source->resultOfSet = 77;
    source.reset();
    EXPECT_EQ(77, intIn(configuration->set("net.port", 80)));
    EXPECT_THAT(journal, ElementsAre("net set port", "net has port", "net has port", "net get port",
                                     "net keys", "net set returns", "net destroyed"));
}

TEST_F(SetCalls, ANamedSourceThatASubscriberRemovesIsKeptAlive) {
    test::watch(*configuration, "net.port", [&](int) { configuration->removeSource("net").get(); });
    journal.clear();
    source.reset();
    configuration->set("net.port", 80, "net").get();
    ASSERT_EQ(7u, journal.size());
    EXPECT_EQ("net set returns", journal[5]);
    EXPECT_EQ("net destroyed", journal[6]);
}

/// A configuration and a property file with the entry port = 80.
class SetWithAPropertyFile : public testing::Test {
protected:
    SetWithAPropertyFile() { std::ofstream(path) << "port = 80\n"; }
    ~SetWithAPropertyFile() override { std::filesystem::remove(path); }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("update-test-" + std::to_string(::getpid()) + ".properties");
    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        makeConfiguration();
};

TEST_F(SetWithAPropertyFile, SkipsItWhenItIsReadOnly) {
    configuration->addPropertyFileSource("file", "", -1, true, path.u16string()).get();
    configuration->set("port", 81).get();
    EXPECT_EQ("80", boost::get<std::string>(configuration->get("port").get()));
    EXPECT_EQ(81, boost::get<int>(*configuration->explain("port")[1].value));
}

TEST_F(SetWithAPropertyFile, ThrowsWhenItIsRegisteredAsWritable) {
    configuration->addPropertyFileSource("file", "", -1, false, path.u16string()).get();
    expectThrows<std::runtime_error>("PropertyFileSource does not support writing",
                                     [&] { configuration->set("port", 81).get(); });
    expectThrows<std::runtime_error>("PropertyFileSource does not support writing",
                                     [&] { configuration->set("port", 81, "file").get(); });
    EXPECT_EQ("80", boost::get<std::string>(configuration->get("port").get()));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

} // namespace
