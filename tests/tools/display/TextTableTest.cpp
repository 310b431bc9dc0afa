#include "display/TextTable.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;

constexpr std::size_t shrinking = 1;

TextTable makeTable() {
    TextTable table;
    table.add({{"a"}, {"a longer value here"}, {"x"}});
    table.add({{"bb"}, {"short"}, {"y"}});
    return table;
}

std::string cutTo(std::size_t width) {
    return makeTable().fittedText({false, width}, shrinking);
}

TEST(TextTable, AlignsColumnsWithoutTrailingSpaces) {
    EXPECT_EQ("a   a longer value here  x\n"
              "bb  short                y\n",
              makeTable().text({}));
}

TEST(TextTable, IsEmptyWithoutRows) {
    EXPECT_EQ("", TextTable().text({}));
}

TEST(TextTable, OmitsEmptyColumns) {
    TextTable table;
    table.add({{""}, {"a"}, {""}, {"b"}, {""}});
    table.add({{""}, {"aa"}, {""}, {""}, {""}});
    EXPECT_EQ("a   b\naa\n", table.text({}));
}

TEST(TextTable, TruncatesOneColumnFirst) {
    EXPECT_EQ("a   a longer value here  x\n"
              "bb  short                y\n",
              cutTo(26));
    EXPECT_EQ("a   a longer value he…  x\n"
              "bb  short               y\n",
              cutTo(25));
    EXPECT_EQ("a   a longer va…  x\n"
              "bb  short         y\n",
              cutTo(19));
}

TEST(TextTable, TruncatesLinesIfTheColumnIsShortAlready) {
    EXPECT_EQ("a   a longer va…\n"
              "bb  short\n",
              cutTo(18));
    EXPECT_EQ("a   a l…\n"
              "bb  sho…\n",
              cutTo(8));
    EXPECT_EQ("a\n"
              "…\n",
              cutTo(1));
}

TEST(TextTable, ColoursTextButNotPadding) {
    TextTable table;
    table.add({{"a", Style::Bold}, {"b", Style::Secondary}, {"", Style::Bold}});
    table.add({{"aaa"}, {"b"}, {"c"}});
    EXPECT_EQ("\x1b[1ma\x1b[0m    \x1b[36mb\x1b[0m\naaa  b  c\n", table.text({true, std::nullopt}));
    EXPECT_EQ("a    b\naaa  b  c\n", table.text({false, std::nullopt}));
}

} // namespace
