/// What only InMemorySource does: writing, and values of every type.

#include "support/Expect.hpp"

#include <connector/configuration/sources/InMemorySource.hpp>

#include <gtest/gtest.h>

#include <memory>

namespace test {

namespace {

using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;

using Values = std::unordered_map<std::string, OptionValue>;
using Numbers = std::vector<int>;

std::shared_ptr<InMemorySource> make(Values values = {}) {
    return std::make_shared<InMemorySource>(std::move(values));
}

const int* numbersIn(const OptionValue& value) {
    return boost::get<Numbers>(value).data();
}

} // namespace

TEST(InMemorySource, TheConstructorEmptiesTheMapOfInitialValues) {
    Values values{{"a", 1}, {"b", 2}};
    const InMemorySource source(std::move(values));
    EXPECT_TRUE(values.empty()); // NOLINT: the constructor promises it
}

TEST(InMemorySource, TheInitialValuesAreReturned) {
    const auto source = make({{"b", 2}, {"a", 1}});
    EXPECT_EQ(1, boost::get<int>(source->get("a")));
    EXPECT_EQ(2, boost::get<int>(source->get("b")));
    EXPECT_EQ((std::set<std::string>{"a", "b"}), source->keys());
}

TEST(InMemorySource, KeysOfAnyBytesAreSortedByTheirBytes) {
    // Keys that differ early or late, in a byte above 0x7F, in a NUL, or only in their length.
    std::set<std::string> keys;
    for (const std::string& beginning : {std::string(), std::string("section.option.")}) {
        keys.clear();
        for (const char* middle : {"", "a", "ab", "abcdefg", "abcdefgh", "abcdefghi"})
            for (const std::string& end : {std::string(), std::string("\0", 1), std::string("\xff"),
                                           std::string("\0b", 2), std::string("z")})
                keys.insert(beginning + middle + end);
        Values values;
        for (const std::string& key : keys)
            values.emplace(key, 1);
        EXPECT_EQ(keys, make(std::move(values))->keys());
    }
}

TEST(InMemorySource, SetOfANewKeyReturnsTheValueJustWritten) {
    EXPECT_EQ(5, boost::get<int>(make()->set("a", 5)));
}

TEST(InMemorySource, SetOfAKeyThatExistsReturnsThePreviousValue) {
    const auto source = make();
    source->set("a", 5);
    EXPECT_EQ(5, boost::get<int>(source->set("a", 7)));
    EXPECT_EQ(7, boost::get<int>(source->get("a")));
}

TEST(InMemorySource, SetOfAnInitialValueReturnsIt) {
    EXPECT_EQ(1, boost::get<int>(make({{"a", 1}})->set("a", 2)));
}

TEST(InMemorySource, SetReturnsThePreviousValueWithItsOwnType) {
    const auto source = make({{"a", std::string("text")}});
    EXPECT_EQ("text", boost::get<std::string>(source->set("a", 2.5)));
    EXPECT_EQ(2.5, boost::get<double>(source->get("a")));
}

TEST(InMemorySource, SetOfTheDefaultValueStoresFalse) {
    const auto source = make();
    EXPECT_FALSE(boost::get<bool>(source->set("a", OptionValue())));
    EXPECT_TRUE(source->has("a"));
    EXPECT_FALSE(boost::get<bool>(source->get("a")));
}

TEST(InMemorySource, WhatSetReturnsForANewKeySharesNothingWithTheTable) {
    const auto source = make();
    OptionValue result = source->set("a", Numbers{1, 2, 3});
    boost::get<Numbers>(result)[0] = 9;
    EXPECT_EQ((Numbers{1, 2, 3}), boost::get<Numbers>(source->get("a")));
}

TEST(InMemorySource, WhatSetTakesSharesNothingWithTheTable) {
    const auto source = make();
    OptionValue value = Numbers{1, 2, 3};
    source->set("a", value);
    boost::get<Numbers>(value)[0] = 9;
    EXPECT_EQ((Numbers{1, 2, 3}), boost::get<Numbers>(source->get("a")));
}

TEST(InMemorySource, GetReturnsADeepCopyEachTime) {
    const auto source = make({{"a", Numbers{1, 2, 3}}});
    const OptionValue one = source->get("a");
    const OptionValue other = source->get("a");
    EXPECT_NE(numbersIn(one), numbersIn(other));
    EXPECT_EQ(boost::get<Numbers>(one), boost::get<Numbers>(other));
}

TEST(InMemorySource, ValuesOfAllTypesKeepTheirTypeAndContent) {
    const std::vector<OptionValue> values = {
        true,
        -1,
        4000000000u,
        0.1,
        std::u16string(u"\u00e9\0x", 3),
        std::string("\xff\0x", 3),
        std::vector<bool>{true, false},
        std::vector<int>{-1, 1},
        std::vector<unsigned int>{0, 4000000000u},
        std::vector<double>{0.1, -0.0},
        std::vector<std::string>{"", "a"},
        std::vector<std::u16string>{u"", u"a"},
    };
    const auto source = make();
    for (const OptionValue& value : values)
        source->set("key" + std::to_string(value.which()), value);
    for (int type = 0; type < static_cast<int>(values.size()); ++type) {
        const OptionValue stored = source->get("key" + std::to_string(type));
        EXPECT_EQ(type, stored.which());
        EXPECT_TRUE(values[type] == stored) << "type " << type;
    }
}

TEST(InMemorySource, SetCallsTheWatcherOnceEvenForAnEqualValue) {
    const auto source = make({{"a", 1}});
    std::vector<std::string> watched;
    source->setWatcher([&](const std::string& key) { watched.push_back(key); });
    source->set("a", 1);
    EXPECT_EQ((std::vector<std::string>{"a"}), watched);
}

TEST(InMemorySource, SetCallsTheWatcherBeforeItReturns) {
    const auto source = make();
    bool called = false;
    source->setWatcher([&](const std::string&) { called = true; });
    source->set("a", 1);
    EXPECT_TRUE(called);
}

TEST(InMemorySource, AWatcherMaySetAnotherKey) {
    const auto source = make();
    source->setWatcher([&](const std::string& key) {
        if (key == "a")
            source->set("b", 2);
    });
    EXPECT_EQ(1, boost::get<int>(source->set("a", 1)));
    EXPECT_EQ((std::set<std::string>{"a", "b"}), source->keys());
}

TEST(InMemorySource, AWatcherThatSetsTheKeyAgainDoesNotChangeTheResultOfTheOuterSet) {
    const auto source = make({{"a", 1}});
    int innerResult = 0;
    source->setWatcher([&](const std::string& key) {
        if (innerResult == 0) {
            innerResult = -1; // ends the recursion
            innerResult = boost::get<int>(source->set(key, 3));
        }
    });
    EXPECT_EQ(1, boost::get<int>(source->set("a", 2)));
    EXPECT_EQ(2, innerResult);
    EXPECT_EQ(3, boost::get<int>(source->get("a")));
}

TEST(InMemorySource, AWatcherThatThrowsOnANewKeyLeavesItStored) {
    const auto source = make();
    source->setWatcher([](const std::string&) { throw std::domain_error("no"); });
    expectThrows<std::domain_error>("no", [&] { source->set("a", 1); });
    EXPECT_EQ(1, boost::get<int>(source->get("a")));
}

} // namespace test
