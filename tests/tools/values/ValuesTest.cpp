/// Values that do not convert to their type.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

TEST(Value, InvalidOnesAreUsageErrorsThatNameTypeAndText) {
    const struct {
        int line;
        const char* type;
        const char* value;
    } rows[] = {
        {__LINE__, "bool", "yes"},
        {__LINE__, "int", "1x"},
        {__LINE__, "uint", "-1"},
        {__LINE__, "double", "nan"},
        {__LINE__, "boolArray", "[1]"},
        {__LINE__, "intArray", "[\"1\"]"},
        {__LINE__, "uintArray", "[-1]"},
        {__LINE__, "doubleArray", "1.5"},
        {__LINE__, "stringArray", "[a]"},
        {__LINE__, "ustringArray", "[1]"},
        {__LINE__, "intArray", "[1] [2]"},
        {__LINE__, "int", ""},
        {__LINE__, "stringArray", "[\"a\""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const std::string message =
            std::string("Value of k does not convert to ") + row.type + ": " + row.value;
        const std::string assignment = std::string("k:") + row.type + "=" + row.value;
        EXPECT_EQ((Result{2, "", usageError(message)}),
                  runConnectorConfig({"-s", assignment, "keys"}));
        EXPECT_EQ((Result{2, "", usageError(message)}),
                  runConnectorConfig({"-d", assignment, "keys"}));
    }
}

TEST(Value, InvalidOnesAreEscapedInTheFailure) {
    EXPECT_EQ((Result{2, "", usageError("Value of k does not convert to ustring: \\xff\\x1b\\n")}),
              runConnectorConfig({"-s", "k:ustring=\xff\x1b\n", "keys"}));
}

} // namespace
