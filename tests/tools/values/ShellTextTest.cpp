#include "values/ShellText.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;

TEST(ShellVariable, HasUpperCaseDigitsAndUnderscores) {
    const struct {
        int line;
        const char* key;
        const char* variable;
    } rows[] = {
        {__LINE__, "net.port", "NET_PORT"},
        {__LINE__, "A_z09", "A_Z09"},
        {__LINE__, "a-b c=d", "A_B_C_D"},
        {__LINE__, "9lives", "_9LIVES"},
        {__LINE__, "_9", "_9"},
        {__LINE__, ".9", "_9"},
        {__LINE__, "\xC3\xA4.\xff", "____"},
        {__LINE__, "`$(x)`\n'\"\\", "___X______"},
        {__LINE__, "@[`{/:azAZ", "______AZAZ"},
        {__LINE__, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.variable, shellVariable(row.key));
    }
}

TEST(ShellQuoted, EndsTheQuotationOnlyForQuotes) {
    EXPECT_EQ("''", shellQuoted(""));
    EXPECT_EQ("'a $b \\ \"c\"\n'", shellQuoted("a $b \\ \"c\"\n"));
    EXPECT_EQ(R"('a'\''b')", shellQuoted("a'b"));
    EXPECT_EQ(R"(''\'''\''')", shellQuoted("''"));
}

} // namespace
