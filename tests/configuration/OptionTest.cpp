#include "configuration/Answers.hpp"

#include <connector/configuration/Option.hpp>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace {

using connector::configuration::Option;
using connector::configuration::OptionValue;

static_assert(std::is_aggregate_v<Option>);
static_assert(std::is_copy_constructible_v<Option> && std::is_copy_assignable_v<Option>);
static_assert(std::is_move_constructible_v<Option> && std::is_move_assignable_v<Option>);

TEST(Option, HoldsKeySourceAndValueInThisOrder) {
    const auto& [key, source, value] = Option{"net.port", "default", 80};
    EXPECT_EQ("net.port", key);
    EXPECT_EQ("default", source);
    EXPECT_EQ(80, boost::get<int>(value));
}

TEST(Option, HoldsEmptyStringsAndFalseByDefault) {
    const Option option{};
    EXPECT_EQ("", option.key);
    EXPECT_EQ("", option.source);
    EXPECT_FALSE(boost::get<bool>(option.value));
}

TEST(Option, DoesNotChangeWithItsCopy) {
    const Option original{"key", "source",
                          std::string("a text too long for the small-string optimisation")};
    Option copy = original;
    copy.key = "other";
    copy.source = "another";
    boost::get<std::string>(copy.value)[0] = 'A';
    EXPECT_EQ("key", original.key);
    EXPECT_EQ("source", original.source);
    EXPECT_EQ("a text too long for the small-string optimisation",
              boost::get<std::string>(original.value));
}

TEST(Option, MovesItsContents) {
    Option from{"key", "source", 7};
    const Option to = std::move(from);
    EXPECT_EQ("key", to.key);
    EXPECT_EQ("source", to.source);
    EXPECT_EQ(7, boost::get<int>(to.value));
}

TEST(Option, FromASourceWithAGroupHasTheFullKey) {
    const auto configuration = test::makeConfiguration();
    configuration->addInMemorySource("file", "app", 5, false, {{"timeout", 30}}).get();
    const Option option = configuration->getOption("app.timeout").get();
    EXPECT_EQ("app.timeout", option.key);
    EXPECT_EQ("file", option.source);
    EXPECT_EQ(30, boost::get<int>(option.value));
}

} // namespace
