/// --env
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

Result runWithEnvironment(const std::vector<std::string>& environment,
                          const std::vector<std::string>& arguments) {
    test::RunOptions options;
    options.environment = environment;
    return runConnectorConfig(arguments, "", options);
}

TEST(EnvOption, AddsTheVariablesThatBeginWithThePrefixAsText) {
    EXPECT_EQ((Result{0,
                      "KEY       TYPE    VALUE  SOURCE\n"
                      "a_b       string         env\n"
                      "net.port  string  8080   env\n",
                      ""}),
              runWithEnvironment({"CCTEST_NET__PORT=8080", "CCTEST_A_B=", "OTHER_CCTEST_X=1"},
                                 {"--env", "CCTEST_", "show"}));
}

TEST(EnvOption, TheSourceIsReadOnlyAndHasTheNameEnvAndTheOrder50) {
    const Result result =
        runWithEnvironment({"CCTEST_K=1"}, {"--env", "CCTEST_", "--json", "explain", "k"});
    EXPECT_NE(result.output.npos,
              result.output.find(R"({"name":"env","order":50,"group":"","readOnly":true,)"))
        << result.output;
}

TEST(EnvOption, MembersMayComeInAnyOrder) {
    for (const char* members : {",name=n,group=g,order=-7", ",order=-7,group=g.,name=n"}) {
        const Result result = runWithEnvironment(
            {"CCTEST_K=1"}, {"--env", std::string("prefix=CCTEST_") + members, "explain", "g.k"});
        EXPECT_EQ(0u, result.output.find("n         order -7          group g.  read-only  "
                                         "supplies the value  1\n"))
            << result.output;
    }
}

TEST(EnvOption, IsConsultedBetweenSetAndFiles) {
    const test::TemporaryFile file("a=file\nb=file\n");
    EXPECT_EQ((Result{0, "override\nenv\n", ""}),
              runWithEnvironment(
                  {"CCTEST_A=env", "CCTEST_B=env"},
                  {"--env", "CCTEST_", "-f", file.path(), "-s", "a=override", "get", "a", "b"}));
}

TEST(EnvOption, MayBeRepeatedWithAnotherName) {
    const std::vector<std::string> environment{"CCTEST_A=1", "CDTEST_B=2"};
    EXPECT_EQ((Result{0, "a\nb\n", ""}),
              runWithEnvironment(environment,
                                 {"--env", "CCTEST_", "--env=prefix=CDTEST_,name=more", "keys"}));
    EXPECT_EQ(
        (Result{1, "", "connector-config: Source with the requested name already exists: env\n"}),
        runWithEnvironment(environment, {"--env", "CCTEST_", "--env", "CDTEST_", "keys"}));
}

TEST(EnvOption, TwoVariablesForOneKeyAreAFailure) {
    const Result result =
        runWithEnvironment({"CCTEST_A=1", "CCTEST_a=2"}, {"--env", "CCTEST_", "keys"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(
        0u, result.errors.find("connector-config: Two environment variables for one key: CCTEST_"))
        << result.errors;
}

TEST(EnvOption, InvalidMembersAreUsageErrors) {
    const struct {
        int line;
        const char* environment;
        const char* message;
    } rows[] = {
        {__LINE__, "prefix=A,format=json", "Unknown member of --env: format=json"},
        {__LINE__, "prefix=A,path=a", "Unknown member of --env: path=a"},
        {__LINE__, "prefix=A,", "Unknown member of --env: "},
        {__LINE__, "prefix=A,name", "Unknown member of --env: name"},
        {__LINE__, "prefix=A,name=b,name=c", "Repeated member of --env: name=c"},
        {__LINE__, "prefix=A,order=1.5", "Order is not a 32-bit integer: 1.5"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{2, "", usageError(row.message)}),
                  runConnectorConfig({"--env", row.environment, "keys"}));
    }
}

} // namespace
