#include "arguments/EnvironmentArgument.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;

TEST(EnvironmentArgument, AcceptsPlainPrefixesAndTheLongForm) {
    const struct {
        int line;
        const char* text;
        EnvironmentArgument environment;
    } rows[] = {
        {__LINE__, "APP_", {"APP_", "env", "", 50}},
        {__LINE__, "", {"", "env", "", 50}},
        {__LINE__, "A,name=b", {"A,name=b", "env", "", 50}},
        {__LINE__, "Prefix=A", {"Prefix=A", "env", "", 50}},
        {__LINE__, "prefix=A", {"A", "env", "", 50}},
        {__LINE__, "prefix=", {"", "env", "", 50}},
        {__LINE__, "prefix=A,order=-7,group=g,name=n", {"A", "n", "g", -7}},
        {__LINE__, "prefix=A,name=,group=", {"A", "", "", 50}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const EnvironmentArgument environment = parseEnvironmentArgument(row.text);
        EXPECT_EQ(row.environment.prefix, environment.prefix);
        EXPECT_EQ(row.environment.name, environment.name);
        EXPECT_EQ(row.environment.group, environment.group);
        EXPECT_EQ(row.environment.order, environment.order);
    }
}

} // namespace
