#include "display/TextWidth.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;

TEST(WidthOf, CountsColumns) {
    EXPECT_EQ(0u, widthOf(""));
    EXPECT_EQ(5u, widthOf("plain"));
    EXPECT_EQ(4u, widthOf("Café"));
    EXPECT_EQ(4u, widthOf("漢字"));
    EXPECT_EQ(1u, widthOf("e\xCC\x81"));        // a letter and its accent
    EXPECT_EQ(2u, widthOf("\xF0\x9F\x98\x80")); // an emoji
    EXPECT_EQ(1u, widthOf("\xF3\xB0\x80\x80")); // private use: appearance unknown
}

TEST(CutToWidth, KeepsWholeCharactersAndAppendsAnEllipsis) {
    const struct {
        int line;
        const char* text;
        std::size_t width;
        const char* cut;
    } rows[] = {
        {__LINE__, "text", 4, "text"},
        {__LINE__, "text", 5, "text"},
        {__LINE__, "text", 3, "te…"},
        {__LINE__, "text", 1, "…"},
        {__LINE__, "text", 0, ""},
        {__LINE__, "", 0, ""},
        {__LINE__, "漢字", 4, "漢字"},
        {__LINE__, "漢字", 3, "漢…"},
        {__LINE__, "漢字", 2, "…"}, // only one column left
        {__LINE__, "e\xCC\x81tat", 4, "e\xCC\x81tat"},
        {__LINE__, "e\xCC\x81tat", 2, "e\xCC\x81…"}, // an accent stays with its letter
        {__LINE__, "éa", 1, "…"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.cut, cutToWidth(row.text, row.width));
    }
}

} // namespace
