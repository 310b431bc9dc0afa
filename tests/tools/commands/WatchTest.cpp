/// connector-config watch
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::connectorConfig;
using test::Process;
using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

/// @return what the program writes to standard error for a key without a value
std::string noValueYet(const std::string& key) {
    return "connector-config: No value yet: " + key + "\n";
}

TEST(Watch, WritesTheCurrentValueFirst) {
    Process process(connectorConfig({"-s", "net.port=1", "watch", "net.port"}));
    EXPECT_EQ("net.port = 1  (override)", process.readLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST(Watch, NamesEachKeyWithoutAValueOnceOnStandardError) {
    EXPECT_EQ((Result{0, "k = 1  (override)\n", noValueYet("net.port") + noValueYet("a\\n")}),
              runConnectorConfig({"-s", "k=1", "watch", "net.port", "k", "net.port", "a\n"}));
}

TEST(Watch, NamesAKeyWithoutAValueAlsoWithJson) {
    EXPECT_EQ((Result{0, "", noValueYet("k")}), runConnectorConfig({"--json", "watch", "k"}));
}

TEST(Watch, WritesAChangeBeforeItReadsTheNextLine) {
    Process process(connectorConfig({"watch", "k"}));
    process.write("set k=1\n");
    EXPECT_EQ("k = 1  (override)", process.readLine());
    process.write("set k:uint=2\n");
    EXPECT_EQ("k = 2  (override)", process.readLine());
    EXPECT_EQ((Result{0, "", noValueYet("k")}), process.finish());
}

TEST(Watch, WaitsForAPipeThatDoesNotBlock) {
    test::RunOptions options;
    options.nonBlocking = true;
    Process process(connectorConfig({"-s", "k=0", "watch", "k"}), options);
    EXPECT_EQ("k = 0  (override)", process.readLine());
    for (const std::string value : {"1", "2"}) {
        process.write("set k=" + value + "\n");
        EXPECT_EQ("k = " + value + "  (override)", process.readLine());
    }
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST(Watch, ReportsThatStandardInputCannotBeRead) {
    EXPECT_EQ((Result{1, "k = 1  (override)\n",
                      "connector-config: Input could not be read: Is a directory\n"}),
              test::run({"/bin/sh", "-c", "\"$0\" -s k=1 watch k < /", CONNECTOR_CONFIG_PROGRAM}));
    EXPECT_EQ((Result{1, "", "connector-config: Input could not be read: Bad file descriptor\n"}),
              test::run({"/bin/sh", "-c", "\"$0\" watch k <&-", CONNECTOR_CONFIG_PROGRAM}));
}

TEST(Watch, SkipsALineThatIsTooLong) {
    constexpr std::size_t longest = 1024 * 1024;
    const std::string set = "set l="; // of a key that is not written
    const std::string input = set + std::string(longest - set.size(), 'x') + "\n" + set +
                              std::string(longest + 1 - set.size(), 'x') + "\n" +
                              std::string(3 * longest, ' ') + "\nset k=1\n";
    EXPECT_EQ((Result{0, "k = 1  (override)\n",
                      "connector-config: No value yet: k\n"
                      "connector-config: A line is at most 1 MiB long\n"
                      "connector-config: A line is at most 1 MiB long\n"}),
              runConnectorConfig({"watch", "k"}, input));
}

TEST(Watch, ComplaintsShowAtMost200BytesOfText) {
    const std::string text =
        "Neither set KEY[:TYPE]=VALUE [@SOURCE], add FILE, remove NAME nor quit: ";
    const std::string line(200 - text.size(), 'x');
    EXPECT_EQ((Result{0, "",
                      "connector-config: No value yet: k\nconnector-config: " + text + line +
                          "\nconnector-config: " + text + line + "...\n"}),
              runConnectorConfig({"watch", "k"}, line + "\n" + line + "xx\n"));
}

TEST(Watch, WritesAnEqualValueAgain) {
    EXPECT_EQ((Result{0, "k = 1  (override)\nk = 1  (override)\n", noValueYet("k")}),
              runConnectorConfig({"watch", "k"}, "set k=1\nset k=1\n"));
}

TEST(Watch, WritesSeveralKeysAsTheyChange) {
    EXPECT_EQ(
        (Result{0,
                "b = 0  (override)\n"
                "a = 1  (override)\n"
                "b = 2  (override)\n",
                noValueYet("a")}),
        runConnectorConfig({"-s", "b=0", "watch", "a", "b"}, "set a=1\nset other=9\nset b=2\n"));
}

TEST(Watch, WritesTheEffectiveValueAgainWhenAHiddenSourceChanges) {
    EXPECT_EQ((Result{0, "k = 1  (override)\nk = 1  (override)\n", ""}),
              runConnectorConfig({"-s", "k=1", "watch", "k"}, "set k=2 @default\n"));
}

TEST(Watch, SetsTheValueInTheNamedSource) {
    EXPECT_EQ((Result{0, "k = 2  (default)\n", noValueYet("k")}),
              runConnectorConfig({"watch", "k"}, "set k=2 @default\n"));
}

TEST(Watch, WritesTheValuesOfAnAddedFile) {
    const TemporaryFile file("port=1\n");
    EXPECT_EQ(
        (Result{0, "net.port = 1  (f)\n", noValueYet("net.port")}),
        runConnectorConfig({"watch", "net.port"}, "add " + file.named("f", ",group=net") + "\n"));
}

TEST(Watch, NamesAnAddedSourceAfterItsPath) {
    const TemporaryFile file("k=1\n");
    EXPECT_EQ((Result{0, "k = 1  (" + file.path() + ")\n", noValueYet("k")}),
              runConnectorConfig({"watch", "k"}, "add " + file.path() + "\n"));
}

TEST(Watch, WritesTheNewEffectiveValueWhenASourceIsRemoved) {
    const TemporaryFile file("k=1\n");
    EXPECT_EQ((Result{0, "k = 1  (my file)\nk = 0  (default)\n", ""}),
              runConnectorConfig({"-d", "k=0", "-f", file.named("my file"), "watch", "k"},
                                 "remove my file\n"));
}

TEST(Watch, WritesNothingWhenTheLastValueIsRemoved) {
    EXPECT_EQ((Result{0, "k = 1  (override)\n", ""}),
              runConnectorConfig({"-s", "k=1", "watch", "k"}, "remove override\n"));
}

TEST(Watch, RemovingASourceWithAGroupNotifiesOnlyTheKeysWithoutTheGroup) {
    const TemporaryFile file("port=1\n");
    EXPECT_EQ((Result{0,
                      "net.port = 1  (f)\n"
                      "port = 5  (default)\n"
                      "port = 5  (default)\n",
                      ""}),
              runConnectorConfig({"-f", file.named("f", ",group=net"), "-d", "net.port=4", "-d",
                                  "port=5", "watch", "net.port", "port"},
                                 "remove f\n"));
}

TEST(Watch, EscapesControlCharacters) {
    EXPECT_EQ(
        (Result{0,
                "k\\n = a\\rb\\x1b[31m\\xff\\u0085\\u2028  (override)\n"
                "l = [\"a\\nb\",\"\\u007f\"]  (override)\n",
                noValueYet("l")}),
        runConnectorConfig({"-s", "k\n=a\rb\x1b[31m\xff\xc2\x85\xe2\x80\xa8", "watch", "k\n", "l"},
                           "set l:stringArray=[\"a\\nb\",\"\x7f\"]\n"));
}

TEST(Watch, SetLinesMayContainSpacesAndAtSigns) {
    const struct {
        int line;
        const char* input;
        const char* output;
    } rows[] = {
        {__LINE__, "set k=a@b", "a@b  (override)"},
        {__LINE__, "set k=@default", "@default  (override)"},
        {__LINE__, "set k= @default", "  (default)"},
        {__LINE__, "set k=a b @default", "a b  (default)"},
        {__LINE__, "set k=a\t@default", "a  (default)"},
        {__LINE__, "set k=a  @default", "a   (default)"},
        {__LINE__, "set k=a @default ", "a  (default)"},
        {__LINE__, "set k=a @b c", "a @b c  (override)"},
        {__LINE__, "set k=a @b @default", "a @b  (default)"},
        {__LINE__, "set k=a ", "a   (override)"},
        {__LINE__, "  set \t k=a", "a  (override)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{0, std::string("k = ") + row.output + "\n", noValueYet("k")}),
                  runConnectorConfig({"watch", "k"}, std::string(row.input) + "\n"));
    }
}

TEST(Watch, ReportsInvalidLinesOnStandardErrorAndContinues) {
    const std::string unknown =
        "Neither set KEY[:TYPE]=VALUE [@SOURCE], add FILE, remove NAME nor quit: ";
    const struct {
        int line;
        const char* input;
        std::string message;
    } rows[] = {
        {__LINE__, "", unknown},
        {__LINE__, "get k", unknown + "get k"},
        {__LINE__, "SET k=1", unknown + "SET k=1"},
        {__LINE__, "setk=1", unknown + "setk=1"},
        {__LINE__, "set", unknown + "set"},
        {__LINE__, "add", unknown + "add"},
        {__LINE__, "remove ", unknown + "remove "},
        {__LINE__, "quit now", unknown + "quit now"},
        {__LINE__, "\x1b[31m", unknown + "\\x1b[31m"},
        {__LINE__, "set k", "Not of the form KEY[:TYPE]=VALUE: k"},
        {__LINE__, "set k:int=x", "Value of k does not convert to int: x"},
        {__LINE__, "set k=1 @nobody", "Source not found or not writable: k, nobody"},
        {__LINE__, "set k=1 @", "Source not found or not writable: k, "},
        {__LINE__, "set k=1 @file", "Source not found or not writable: k, file"},
        {__LINE__, "add /no/such/file", "Property file could not be opened: /no/such/file"},
        {__LINE__, "add a\xff", "Path is not valid UTF-8: a\\xff"},
        {__LINE__, "add path=a,b=c", "Unknown member of FILE: b=c"},
        {__LINE__, "add path=a,order=x", "Order is not a 32-bit integer: x"},
        {__LINE__, "remove nobody", "No source with that name: nobody"},
    };
    const TemporaryFile file("k=0\n");
    Process process(connectorConfig({"-f", file.named("file"), "watch", "k"}));
    EXPECT_EQ("k = 0  (file)", process.readLine());
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        process.write(std::string(row.input) + "\n");
        EXPECT_EQ("connector-config: " + row.message, process.readErrorLine());
    }
    process.write("set k=1\n");
    EXPECT_EQ("k = 1  (override)", process.readLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST(Watch, ReportsAnExistingNameWithTheLibrarysText) {
    const TemporaryFile file("k=0\n");
    EXPECT_EQ(
        (Result{0, "k = 0  (f)\n",
                "connector-config: Source with the requested name already exists: f\n"}),
        runConnectorConfig({"-f", file.named("f"), "watch", "k"}, "add " + file.named("f") + "\n"));
}

TEST(Watch, ReportsAMissingWritableSourceWithTheLibrarysText) {
    EXPECT_EQ((Result{0, "",
                      noValueYet("k") +
                          "connector-config: No writable configuration source for key: k\n"}),
              runConnectorConfig({"watch", "k"}, "remove override\nremove default\nset k=1\n"));
}

TEST(Watch, QuitIgnoresTheRestOfTheInput) {
    Process process(connectorConfig({"watch", "k"}));
    process.write(" quit \nset k=1\n");
    EXPECT_EQ("", process.readLine());
    EXPECT_EQ((Result{0, "", noValueYet("k")}), process.finish());
}

TEST(Watch, TheLastLineNeedsNoLineBreak) {
    EXPECT_EQ((Result{0, "k = 1  (override)\n", noValueYet("k")}),
              runConnectorConfig({"watch", "k"}, "set k=1"));
}

TEST(Watch, LinesMayBeLong) {
    const std::string value(100000, 'v');
    EXPECT_EQ((Result{0, "k = " + value + "  (override)\nk = 2  (override)\n", noValueYet("k")}),
              runConnectorConfig({"watch", "k"}, "set k=" + value + "\nset k=2\n"));
}

TEST(Watch, WritesTheTraceToStandardError) {
    const Result result = runConnectorConfig({"--trace", "watch", "k"}, "set k=1\n");
    EXPECT_EQ("k = 1  (override)\n", result.output);
    EXPECT_NE(std::string::npos, result.errors.find("set: k\nset: k@override\nupdatePublishers: k\n"
                                                    "get: k from override\nnotifying watcher: k\n"))
        << result.errors;
}

TEST(WatchJson, WritesOneObjectPerLine) {
    Process process(connectorConfig({"--json", "-s", "k\n=a\nb\xff", "watch", "k\n", "l"}));
    EXPECT_EQ("{\"key\":\"k\\n\",\"source\":\"override\",\"value\":"
              "{\"type\":\"string\",\"value\":\"a\\nb\xEF\xBF\xBD\"}}",
              process.readLine());
    EXPECT_EQ("connector-config: No value yet: l", process.readErrorLine());
    process.write("set l:intArray=[1, 2] @default\n");
    EXPECT_EQ(R"({"key":"l","source":"default","value":{"type":"intArray","value":[1,2]}})",
              process.readLine());
    process.write("nonsense\n");
    EXPECT_EQ("connector-config: Neither set KEY[:TYPE]=VALUE [@SOURCE], add FILE, remove NAME nor "
              "quit: nonsense",
              process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

} // namespace
