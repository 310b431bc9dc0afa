/// --trace
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

/// @return the lines without those about built-in sources, and without class names, which depend on
///         the compiler
std::string linesAfterTheBuiltInSources(const std::string& errors) {
    std::string lines = errors.substr(errors.find("addSource: override"));
    lines.erase(0, lines.find('\n') + 1);
    for (std::size_t start; (start = lines.find("N16connector_config")) != std::string::npos;)
        lines.erase(start, lines.find('\n', start) - start);
    return lines;
}

TEST(Trace, WritesTheDiagnosticLinesToStandardError) {
    const TemporaryFile file("a=1\nb=2");
    const Result result = runConnectorConfig({"get", "a", "-f", file.named("f"), "--trace"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("1\n", result.output);
    EXPECT_EQ("Parsed property: a = 1\n"
              "Parsed final property: b = 2\n"
              "addSource: f, , 100, 1, \n"
              "updatePublishers: a\n"
              "get: a from f\n"
              "updatePublishers: b\n"
              "get: b from f\n"
              "get: a from f\n",
              linesAfterTheBuiltInSources(result.errors));
}

TEST(Trace, EscapesControlCharacters) {
    const Result result = runConnectorConfig({"--trace", "-s", "a\n\x1b[31m\xff=1", "keys", "x"});
    EXPECT_NE(std::string::npos, result.errors.find("set: a\\n\\x1b[31m\\xff, override\n"))
        << result.errors;
}

/// Takes many minutes if every possible key is matched from its beginning.
TEST(Trace, MasksALineWithManySeparatorsInLinearTime) {
    std::string line = "k";
    for (int i = 0; i < 500000; ++i)
        line += " = ";
    const TemporaryFile file(line + "token = hush\nb = 1");
    const Result result = runConnectorConfig({"--trace", "-f", file.named("f"), "get", "b"});
    EXPECT_EQ("1\n", result.output);
    EXPECT_NE(std::string::npos, result.errors.find("token = ******\n"));
    EXPECT_EQ(std::string::npos, result.errors.find("hush"));
}

TEST(Trace, WritesNothingByDefault) {
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"-s", "a=1", "get", "a"}));
}

TEST(Trace, EndsWithTheMessageOfAFailure) {
    const Result result = runConnectorConfig({"--trace", "get", "k"});
    const std::string message = "connector-config: No option with the specified key was found: k\n";
    EXPECT_EQ(1, result.status);
    ASSERT_GE(result.errors.size(), message.size());
    EXPECT_EQ(message, result.errors.substr(result.errors.size() - message.size()));
}

} // namespace
