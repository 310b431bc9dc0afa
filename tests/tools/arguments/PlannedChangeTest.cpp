#include "arguments/PlannedChange.hpp"

#include "values/ValueText.hpp"
#include "values/WrongArguments.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;

using Words = std::vector<std::string>;

PlannedChange parse(const Words& words) {
    return parsePlannedChange(words, Secrets());
}

std::string failureOf(const Words& words) {
    try {
        parse(words);
    } catch (const WrongArguments& error) {
        return error.what();
    }
    return "no failure";
}

TEST(PlannedChange, IsOneOfFour) {
    const auto set = std::get<SetLine>(parse({"set", "net.port:int=80"}));
    EXPECT_EQ("net.port", set.assignment.key);
    EXPECT_EQ("80", plainText(set.assignment.value));
    EXPECT_FALSE(set.source);
    EXPECT_EQ("a b", std::get<SetLine>(parse({"set", "k=v", "@a b"})).source);
    EXPECT_EQ("/f", std::get<AddLine>(parse({"add", "path=/f,name=n"})).file.path);
    EXPECT_EQ("n", std::get<AddLine>(parse({"add", "path=/f,name=n"})).file.name);
    EXPECT_EQ("a b", std::get<RemoveLine>(parse({"remove", "a b"})).name);
    EXPECT_TRUE(std::holds_alternative<ReloadFiles>(parse({"reload"})));
}

TEST(PlannedChange, TakesAWordAsItIs) {
    const auto set = std::get<SetLine>(parse({"set", "k=v @default"}));
    EXPECT_EQ("v @default", plainText(set.assignment.value));
    EXPECT_FALSE(set.source);
}

TEST(PlannedChange, RefusesEverythingElse) {
    const std::string forms =
        "plan requires set KEY[:TYPE]=VALUE [@SOURCE], add FILE, remove NAME or reload";
    for (const Words& words : {Words{},
                               {"set"},
                               {"set", "a=1", "@x", "y"},
                               {"add"},
                               {"add", "a", "b"},
                               {"remove"},
                               {"reload", "x"},
                               {"quit"},
                               {"SET", "a=1"}})
        EXPECT_EQ(forms, failureOf(words)) << testing::PrintToString(words);
    EXPECT_EQ("Not of the form @SOURCE: default", failureOf({"set", "a=1", "default"}));
    EXPECT_EQ("Not of the form KEY[:TYPE]=VALUE: a", failureOf({"set", "a"}));
    EXPECT_EQ("Value of token does not convert to int: ******",
              failureOf({"set", "token:int=hush"}));
    EXPECT_EQ("Unknown member of FILE: x=1", failureOf({"add", "path=p,x=1"}));
}

} // namespace
