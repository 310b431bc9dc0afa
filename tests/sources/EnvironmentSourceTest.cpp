#include "sources/Shown.hpp"
#include "support/Expect.hpp"

#include <connector/sources/EnvironmentSource.hpp>

#include <gtest/gtest.h>

#include <cstdlib>

namespace test {

namespace {

using connector::configuration::OptionValue;
using connector::sources::EnvironmentSource;

OptionValue text(const std::string& value) {
    return value;
}

/// Sets a variable until it is destroyed.
class Variable {
public:
    Variable(const std::string& newName, const std::string& value) : name(newName) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    ~Variable() { unsetenv(name.c_str()); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const std::string name;
};

} // namespace

TEST(EnvironmentSourceTest, NamesBecomeKeys) {
    const Variable port("TEST7_NET__PORT", "80");
    const Variable level("TEST7_Log_Level", "x");
    const Variable three("TEST7_A___B", "y");
    const Variable four("TEST7_C____D", "z");
    const Variable alone("TEST7_", "ignored");
    const Variable other("TEST70", "ignored");
    const Variable umlaut("TEST7_\xC3\x84", "\xFF");
    EnvironmentSource source("TEST7_");
    EXPECT_EQ((std::set<std::string>{"net.port", "log_level", "a._b", "c..d", "\xC3\x84"}),
              source.keys());
    EXPECT_EQ(text("80"), source.get("net.port"));
    EXPECT_EQ(text("\xFF"), source.get("\xC3\x84"));
}

TEST(EnvironmentSourceTest, WhatIsSetLaterIsNotThere) {
    EnvironmentSource source("TEST7_");
    const Variable late("TEST7_LATE", "1");
    EXPECT_FALSE(source.has("late"));
}

TEST(EnvironmentSourceTest, TwoVariablesForOneKeyAreRefused) {
    const Variable upper("TEST7_A", "1");
    const Variable lower("TEST7_a", "2");
    try {
        EnvironmentSource source("TEST7_");
        FAIL();
    } catch (const std::invalid_argument& error) {
        const std::string what = error.what();
        EXPECT_TRUE(what == "Two environment variables for one key: TEST7_A, TEST7_a" ||
                    what == "Two environment variables for one key: TEST7_a, TEST7_A")
            << what;
    }
}

TEST(EnvironmentSourceTest, AMapNamesTheVariables) {
    const Variable home("TEST7_HOME", "/root");
    const Variable empty("TEST7_EMPTY", "");
    EnvironmentSource source(std::map<std::string, std::string>{
        {"TEST7_HOME", "dir.home"}, {"TEST7_EMPTY", "empty"}, {"TEST7_UNSET", "unset"}});
    EXPECT_EQ((std::set<std::string>{"dir.home", "empty"}), source.keys());
    EXPECT_EQ(text(""), source.get("empty"));
}

TEST(EnvironmentSourceTest, TwoVariablesOfAMapForOneKeyAreRefusedWhenBothAreSet) {
    const std::map<std::string, std::string> keys = {{"TEST7_A", "k"}, {"TEST7_B", "k"}};
    const Variable first("TEST7_A", "1");
    EXPECT_EQ(text("1"), EnvironmentSource(keys).get("k"));
    const Variable second("TEST7_B", "2");
    expectThrows<std::invalid_argument>("Two environment variables for one key: TEST7_A, TEST7_B",
                                        [&] { EnvironmentSource source(keys); });
}

TEST(EnvironmentSourceTest, AnEmptyPrefixTakesAll) {
    const Variable one("TEST7_X", "1");
    EXPECT_EQ(text("1"), EnvironmentSource("").get("test7_x"));
}

TEST(EnvironmentSourceTest, ItIsReadOnly) {
    EnvironmentSource source("TEST7_");
    expectThrows<std::runtime_error>("Source does not support writing",
                                     [&] { source.set("a", 1); });
}

} // namespace test
