#include "../ScriptedSource.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/OptionReading.hpp>

#include <chrono>

namespace {

using namespace std::string_literals;
using namespace connector::configuration;
using test::expectThrows;

class OptionReading : public ::testing::Test {
protected:
    void set(const std::string& key, OptionValue value) {
        configuration->set(key, std::move(value)).get();
    }

    test::Journal journal; // outlives the sources
    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_F(OptionReading, GivesTheValueAsTheTypeAskedFor) {
    set("port", "8080"s);
    EXPECT_EQ(8080, getAs<int>(*configuration, "port"));
    EXPECT_EQ("8080", getAs<std::string>(*configuration, "port"));
    EXPECT_EQ(8080u, findAs<unsigned>(*configuration, "port"));
    EXPECT_EQ(8080.0, getOr<double>(*configuration, "port", 1));
}

TEST_F(OptionReading, AMissingOptionIsTheCoresFailureNothingOrTheFallback) {
    expectThrows<std::runtime_error>("No option with the specified key was found: port",
                                     [&] { getAs<int>(*configuration, "port"); });
    EXPECT_EQ(std::nullopt, findAs<int>(*configuration, "port"));
    EXPECT_EQ(7, getOr<int>(*configuration, "port", 7));
    EXPECT_EQ("x", getOr<std::string>(*configuration, "host", "x"));
}

TEST_F(OptionReading, AnInvalidOptionNamesKeySourceTypeAndValue) {
    configuration->set("wait", "soon"s, "default").get();
    const std::string text = "Option wait from source default is not convertible to duration: "
                             "\"soon\"";
    using std::chrono::seconds;
    expectThrows<InvalidOption>(text, [&] { getAs<seconds>(*configuration, "wait"); });
    expectThrows<InvalidOption>(text, [&] { findAs<seconds>(*configuration, "wait"); });
    expectThrows<InvalidOption>(text, [&] { getOr<seconds>(*configuration, "wait", seconds(1)); });
    try {
        getAs<seconds>(*configuration, "wait");
    } catch (const InvalidOption& invalid) {
        const InvalidOption copy = invalid;
        EXPECT_EQ("wait", copy.key());
        EXPECT_EQ("default", copy.source());
        EXPECT_EQ("duration", copy.expected());
    }
}

TEST_F(OptionReading, SecretsAreNotShown) {
    for (const char* const key : {"db.password", "PassWord", "a.SECRET.b", "apiTokens"}) {
        set(key, "hunter2"s);
        expectThrows<InvalidOption>("Option "s + key +
                                        " from source override is not convertible to int: ******",
                                    [&] { getAs<int>(*configuration, key); });
    }
    set("passwor.d", "shown"s);
    expectThrows<InvalidOption>(
        "Option passwor.d from source override is not convertible to int: \"shown\"",
        [&] { getAs<int>(*configuration, "passwor.d"); });
}

TEST_F(OptionReading, WhatASourceThrowsPasses) {
    const auto source = std::make_shared<test::ScriptedSource>(
        journal, "source", std::map<std::string, OptionValue>{{"key", 1}});
    configuration->addSource("source", "", -1, true, source).get();
    source->onGet = [](const std::string& key) {
        throw std::runtime_error("No option with the specified key was found: " + key);
    };
    const std::string text = "No option with the specified key was found: key";
    expectThrows<std::runtime_error>(text, [&] { getAs<int>(*configuration, "key"); });
    expectThrows<std::runtime_error>(text, [&] { findAs<int>(*configuration, "key"); });
    expectThrows<std::runtime_error>(text, [&] { getOr<int>(*configuration, "key", 1); });
}

TEST_F(OptionReading, MakesOneLookup) {
    const auto source = std::make_shared<test::ScriptedSource>(
        journal, "source", std::map<std::string, OptionValue>{{"key", "x"s}});
    configuration->addSource("source", "", -1, true, source).get();
    journal.clear();
    EXPECT_THROW(getAs<int>(*configuration, "key"), InvalidOption);
    EXPECT_EQ((test::Journal{"source has key", "source has key", "source get key"}), journal);
}

} // namespace
