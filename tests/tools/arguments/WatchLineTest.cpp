#include "arguments/WatchLine.hpp"

#include "values/WrongArguments.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;

TEST(WatchLine, SetSeparatesAssignmentAndSource) {
    const struct {
        int line;
        const char* text;
        const char* key;
        const char* value;
        std::optional<std::string> source;
    } rows[] = {
        {__LINE__, "set a=b", "a", "b", std::nullopt},
        {__LINE__, "set a=b @c", "a", "b", "c"},
        {__LINE__, "set a=b @", "a", "b", ""},
        {__LINE__, "set a=b@c", "a", "b@c", std::nullopt},
        {__LINE__, "set a=@c", "a", "@c", std::nullopt},
        {__LINE__, "set @a=b", "@a", "b", std::nullopt},
        {__LINE__, "set a=@b @@c", "a", "@b", "@c"},
        {__LINE__, "set a= ", "a", " ", std::nullopt},
        {__LINE__, "set a=b  @c\t ", "a", "b ", "c"},
        {__LINE__, "\t set\ta b=c d", "a b", "c d", std::nullopt},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const WatchLine parsed = parseWatchLine(row.text, Secrets());
        ASSERT_TRUE(std::holds_alternative<SetLine>(parsed));
        const auto& set = std::get<SetLine>(parsed);
        EXPECT_EQ(row.key, set.assignment.key);
        EXPECT_EQ(row.value, boost::get<std::string>(set.assignment.value));
        EXPECT_EQ(row.source, set.source);
    }
}

TEST(WatchLine, TheArgumentOfAddAndRemoveExtendsToTheEndOfTheLine) {
    EXPECT_EQ("a b ", std::get<AddLine>(parseWatchLine("add  a b ", Secrets())).file.path);
    EXPECT_EQ("a b ", std::get<RemoveLine>(parseWatchLine("remove  a b ", Secrets())).name);
}

TEST(WatchLine, QuitTakesNoArgument) {
    EXPECT_TRUE(std::holds_alternative<QuitLine>(parseWatchLine(" quit\t", Secrets())));
    EXPECT_THROW(parseWatchLine("quit x", Secrets()), WrongArguments);
    EXPECT_THROW(parseWatchLine("quit\r", Secrets()), WrongArguments);
}

} // namespace
