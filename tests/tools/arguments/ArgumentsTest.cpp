/// The command line.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

TEST(Arguments, InvalidOnesAreUsageErrors) {
    const struct {
        int line;
        std::vector<std::string> arguments;
        const char* message;
    } rows[] = {
        {__LINE__, {}, "COMMAND is required"},
        {__LINE__, {"--json"}, "COMMAND is required"},
        {__LINE__, {"-s", "a=1"}, "COMMAND is required"},
        {__LINE__, {"fetch", "a"}, "Unknown command: fetch"},
        {__LINE__, {"GET", "a"}, "Unknown command: GET"},
        {__LINE__, {"gte", "a"}, "Unknown command: gte, did you mean get?"},
        {__LINE__, {"--jsno", "keys"}, "Unexpected argument: --jsno, did you mean --json?"},
        {__LINE__, {"get", "--exprt"}, "Unexpected argument: --exprt, did you mean --export?"},
        {__LINE__, {"get\n"}, "Unknown command: get\\n, did you mean get?"},
        {__LINE__, {"get"}, "KEY is required"},
        {__LINE__, {"explain"}, "KEY is required"},
        {__LINE__, {"watch"}, "KEY is required"},
        {__LINE__, {"keys", "a", "b"}, "Unexpected argument: b"},
        {__LINE__, {"show", "a", "[b]"}, "Unexpected argument: [b]"},
        {__LINE__, {"explain", "a", "b"}, "Unexpected argument: b"},
        {__LINE__, {"--colour", "keys"}, "Unexpected argument: --colour"},
        {__LINE__, {"keys", "--colour"}, "Unexpected argument: --colour"},
        {__LINE__, {"get", "-x"}, "Unexpected argument: -x"},
        {__LINE__, {"get", "a", "-x"}, "Unexpected argument: -x"},
        {__LINE__, {"keys", "-f"}, "--file: 1 required FILE missing"},
        {__LINE__, {"keys", "--env"}, "--env: 1 required PREFIX missing"},
        {__LINE__, {"keys", "--export"}, "Unexpected argument: --export"},
        {__LINE__, {"get", "a", "--reload"}, "Unexpected argument: --reload"},
        {__LINE__, {"--reload", "watch", "a"}, "Unexpected argument: --reload"},
        {__LINE__, {"--json", "get", "--export", "a"}, "--export excludes --json"},
        {__LINE__, {"keys", "-s"}, "--set: 1 required KEY[:TYPE]=VALUE missing"},
        {__LINE__, {"keys", "-d"}, "--default: 1 required KEY[:TYPE]=VALUE missing"},
        {__LINE__, {"--token-file", "f", "keys"}, "--token-file requires --url"},
        {__LINE__, {"keys", "--ca", "f"}, "--ca requires --url"},
        {__LINE__, {"keys", "--client-cert", "f"}, "--client-cert requires --client-key"},
        {__LINE__, {"keys", "--client-key", "f"}, "--client-key requires --client-cert"},
        {__LINE__,
         {"keys", "--client-key", "f", "--client-cert", "f"},
         "--client-cert requires --url"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{2, "", usageError(row.message)}), runConnectorConfig(row.arguments));
    }
}

TEST(Arguments, OptionsMeanTheSameBeforeAndAfterTheCommand) {
    const Result expected = runConnectorConfig({"--json", "-s", "a=1", "-d", "b=2", "show"});
    EXPECT_EQ(0, expected.status);
    EXPECT_EQ(expected, runConnectorConfig({"show", "--json", "-s", "a=1", "-d", "b=2"}));
    EXPECT_EQ(expected, runConnectorConfig({"-d", "b=2", "show", "--set=a=1", "--json"}));
    EXPECT_EQ(expected, runConnectorConfig({"-sa=1", "show", "--json", "--default", "b=2"}));
}

TEST(Arguments, OptionsMayStandBetweenTheCommandAndItsKey) {
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"get", "-s", "k=1", "k"}));
}

TEST(Arguments, KeysThatLookLikeOptionsFollowTwoDashes) {
    EXPECT_EQ((Result{0, "1\n", ""}),
              runConnectorConfig({"-s", "--json=1", "get", "--", "--json"}));
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"-s", "--=1", "get", "--", "--"}));
    EXPECT_EQ((Result{0, "-a\n", ""}), runConnectorConfig({"-s", "-a=1", "keys", "--", "-"}));
    EXPECT_EQ((Result{0, "a = 1  (override)\n-b = 2  (override)\n", ""}),
              runConnectorConfig({"-s", "a=1", "-s", "-b=2", "watch", "a", "--", "-b"}));
}

TEST(Arguments, KeysThatLookLikeCommandsOrListsAreKeys) {
    for (const std::string key :
         {"get", "keys", "watch", "[a,b]", "{}", "++", "\x01", "[]", "%%"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"-s", key + "=1", "get", key}));
        EXPECT_EQ(0u, runConnectorConfig({"-s", key + "=1", "watch", "other", key})
                          .output.find(key == "\x01" ? "\\x01" : key));
    }
}

TEST(Help, IsTheSameAnywhereOnTheCommandLine) {
    const Result help = runConnectorConfig({"--help"});
    EXPECT_EQ(0, help.status);
    EXPECT_EQ("", help.errors);
    EXPECT_EQ(0u, help.output.find("Usage: connector-config [OPTIONS] COMMAND [ARGUMENTS]\n"));
    EXPECT_EQ(help, runConnectorConfig({"-h"}));
    for (const char* command : {"get", "keys", "show", "explain", "watch"}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(help, runConnectorConfig({command, "--help"}));
        EXPECT_EQ(help, runConnectorConfig({"--help", command}));
    }
}

TEST(Help, NamesEveryOptionAndTypeAndHasAnExampleOfEachCommand) {
    const std::string text = runConnectorConfig({"--help"}).output;
    for (const char* option : {"-f, --file FILE",
                               "-s, --set KEY[:TYPE]=VALUE",
                               "-d, --default KEY[:TYPE]=VALUE",
                               "--json",
                               "--trace",
                               "-h, --help",
                               "--version",
                               "path=P[,name=N][,group=G][,order=O]",
                               ",format=properties",
                               ",optional=true",
                               "--env PREFIX",
                               "prefix=P[,name=N][,group=G][,order=O]",
                               "--export",
                               "--reload",
                               "--url URL",
                               "--token-file FILE",
                               "--ca FILE",
                               "--client-cert FILE --client-key FILE",
                               "--snapshot FILE",
                               "--with-secrets",
                               "bool,",
                               "int,",
                               "uint,",
                               "double,",
                               "ustring,",
                               "string",
                               "boolArray",
                               "intArray",
                               "uintArray",
                               "doubleArray",
                               "stringArray",
                               "ustringArray"})
        EXPECT_NE(std::string::npos, text.find(option)) << option;
    const std::size_t examples = text.find("Examples:\n");
    ASSERT_NE(std::string::npos, examples);
    for (const char* command : {" get ", " keys ", " show ", " explain ", " watch ", " set ",
                                " snapshot", " diff ", " plan "})
        EXPECT_NE(std::string::npos, text.find(command, examples)) << command;
}

TEST(Help, EveryLineFitsATerminal) {
    const std::string text = runConnectorConfig({"--help"}).output;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        EXPECT_LE(end - start, 79u) << text.substr(start, end - start);
        start = end + 1;
    }
}

TEST(Version, IsTheSameAnywhereOnTheCommandLine) {
    const Result expected{0, "connector-config " CONNECTOR_CONFIG_VERSION "\n", ""};
    EXPECT_EQ(expected, runConnectorConfig({"--version"}));
    EXPECT_EQ(expected, runConnectorConfig({"get", "--version"}));
    EXPECT_EQ(expected, runConnectorConfig({"--version", "keys"}));
}

} // namespace
