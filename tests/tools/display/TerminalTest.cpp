/// Standard output that is a terminal.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::RunOptions;

RunOptions terminal(unsigned short columns, std::vector<std::string> environment = {}) {
    RunOptions options;
    options.terminal = columns;
    options.environment = std::move(environment);
    return options;
}

/// A terminal without colours.
RunOptions plainTerminal(unsigned short columns) {
    return terminal(columns, {"NO_COLOR=1"});
}

constexpr const char* colouredTable =
    "\x1b[1mKEY\x1b[0m  \x1b[1mTYPE\x1b[0m    \x1b[1mVALUE\x1b[0m  \x1b[1mSOURCE\x1b[0m\n"
    "k    \x1b[36mstring\x1b[0m  v      \x1b[36moverride\x1b[0m\n";
constexpr const char* plainTable = "KEY  TYPE    VALUE  SOURCE\n"
                                   "k    string  v      override\n";

TEST(ShowOnATerminal, IsColouredWithoutNoColor) {
    EXPECT_EQ((Result{0, colouredTable, ""}),
              runConnectorConfig({"-s", "k=v", "show"}, "", terminal(80)));
}

TEST(ShowOnATerminal, IsNotColouredWithNoColor) {
    EXPECT_EQ((Result{0, plainTable, ""}),
              runConnectorConfig({"-s", "k=v", "show"}, "", terminal(80, {"NO_COLOR=1"})));
}

TEST(ShowOnATerminal, IsColouredIfNoColorIsEmpty) {
    EXPECT_EQ((Result{0, colouredTable, ""}),
              runConnectorConfig({"-s", "k=v", "show"}, "", terminal(80, {"NO_COLOR="})));
}

TEST(ShowOnATerminal, IsNotColouredOnADumbTerminal) {
    EXPECT_EQ((Result{0, plainTable, ""}),
              runConnectorConfig({"-s", "k=v", "show"}, "", terminal(80, {"TERM=dumb"})));
}

TEST(ShowInAPipe, IsNeverColoured) {
    EXPECT_EQ((Result{0, plainTable, ""}), runConnectorConfig({"-s", "k=v", "show"}));
}

TEST(ExplainOnATerminal, IsColouredWithoutNoColor) {
    EXPECT_EQ((Result{0,
                      "override  \x1b[36morder 0\x1b[0m           \x1b[1msupplies the value\x1b[0m"
                      "  v\n"
                      "default   \x1b[36morder 2147483647\x1b[0m  does not have it\n"
                      "set k would go to override and would take effect\n",
                      ""}),
              runConnectorConfig({"-s", "k=v", "explain", "k"}, "", terminal(80)));
}

TEST(ExplainOnATerminal, IsNotColouredWithNoColor) {
    EXPECT_EQ(runConnectorConfig({"-s", "k=v", "explain", "k"}),
              runConnectorConfig({"-s", "k=v", "explain", "k"}, "", plainTerminal(80)));
}

TEST(JsonOnATerminal, IsNeverColouredOrTruncated) {
    const std::string value(100, 'x');
    for (const char* command : {"get", "keys", "show", "explain"}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(
            runConnectorConfig({"--json", "-s", "k=" + value, command, "k"}),
            runConnectorConfig({"--json", "-s", "k=" + value, command, "k"}, "", terminal(20)));
    }
}

TEST(GetAndKeysOnATerminal, AreNeverColouredOrTruncated) {
    const std::string text(100, 'x');
    EXPECT_EQ((Result{0, text + "\n", ""}),
              runConnectorConfig({"-s", "k=" + text, "get", "k"}, "", terminal(20)));
    EXPECT_EQ((Result{0, text + "\n", ""}),
              runConnectorConfig({"-s", text + "=v", "keys"}, "", terminal(20)));
}

TEST(ShowOnATerminal, IsNotTruncatedIfItFits) {
    EXPECT_EQ((Result{0,
                      "KEY  TYPE    VALUE                 SOURCE\n"
                      "k    string  a value of some size  override\n",
                      ""}),
              runConnectorConfig({"-s", "k=a value of some size", "show"}, "", plainTerminal(43)));
}

TEST(ShowOnATerminal, TruncatesValuesFirst) {
    EXPECT_EQ((Result{0,
                      "KEY  TYPE    VALUE                SOURCE\n"
                      "k    string  a value of some si…  override\n"
                      "l    string  short                override\n",
                      ""}),
              runConnectorConfig({"-s", "k=a value of some size", "-s", "l=short", "show"}, "",
                                 plainTerminal(42)));
}

TEST(ShowOnATerminal, TruncatesLinesIfValuesAreShortAlready) {
    EXPECT_EQ((Result{0,
                      "KEY  TYPE    VALUE         SO…\n"
                      "k    string  a value of …  ov…\n",
                      ""}),
              runConnectorConfig({"-s", "k=a value of some size", "show"}, "", plainTerminal(30)));
}

TEST(ShowOnATerminal, NoLineIsWiderThanTheTerminal) {
    for (unsigned short columns = 1; columns < 40; ++columns) {
        SCOPED_TRACE(columns);
        const Result result = runConnectorConfig({"-s", "key=a value of some size", "show"}, "",
                                                 plainTerminal(columns));
        for (std::size_t start = 0; start < result.output.size();) {
            const std::size_t end = result.output.find('\n', start);
            std::string line = result.output.substr(start, end - start);
            for (std::size_t mark; (mark = line.find("…")) != std::string::npos;)
                line.replace(mark, 3, ".");
            EXPECT_LE(line.size(), columns) << line;
            start = end + 1;
        }
    }
}

TEST(ShowOnATerminal, DoesNotSplitWideCharacters) {
    EXPECT_EQ((Result{0,
                      "KEY  TYPE    VALUE         SOURCE\n"
                      "k    string  漢字漢字漢…   override\n",
                      ""}),
              runConnectorConfig({"-s", "k=漢字漢字漢字漢字", "show"}, "", plainTerminal(35)));
}

TEST(ShowOnATerminal, IsNotTruncatedIfTheWidthIsUnknown) {
    const std::string value(300, 'x');
    const Result result = runConnectorConfig({"-s", "k=" + value, "show"}, "", plainTerminal(0));
    EXPECT_NE(std::string::npos, result.output.find(value + "  override\n"));
}

} // namespace
