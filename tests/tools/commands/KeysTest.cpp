/// connector-config keys
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

TEST(Keys, AreSortedByBytesWithoutDuplicates) {
    const TemporaryFile file("b=1\nA=2\na=3\n");
    EXPECT_EQ(
        (Result{0, "A\na\nb\nc\n\\xff\n", ""}),
        runConnectorConfig({"-s", "\xff=1", "-f", file.path(), "-d", "c=1", "-s", "a=2", "keys"}));
}

TEST(Keys, IncludeTheGroupOfTheirSource) {
    const TemporaryFile file("port=1\n");
    EXPECT_EQ((Result{0, "net.port\n", ""}),
              runConnectorConfig({"-f", file.named("n", ",group=net"), "keys"}));
}

TEST(Keys, MatchAPrefixByteByByte) {
    EXPECT_EQ((Result{0, "net\nnet.port\nnetwork\n", ""}),
              runConnectorConfig({"-s", "net.port=1", "-s", "network=1", "-s", "net=1", "-s",
                                  "ne=1", "-s", "nf=1", "-s", "Net=1", "keys", "net"}));
}

TEST(Keys, MatchAPrefixThatEndsInsideACharacter) {
    EXPECT_EQ((Result{0, "\xC3\xA9\n", ""}),
              runConnectorConfig({"-s", "\xC3\xA9=1", "keys", "\xC3"}));
}

TEST(Keys, SucceedsWithoutOutputIfNoKeyMatches) {
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"-s", "a=1", "keys", "b"}));
}

TEST(Keys, SucceedsWithoutOutputIfThereAreNoOptions) {
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"keys"}));
}

TEST(Keys, AllMatchTheEmptyPrefix) {
    EXPECT_EQ((Result{0, "a\n", ""}), runConnectorConfig({"-s", "a=1", "keys", ""}));
}

TEST(Keys, AreEscapedAndOnOneLineEach) {
    EXPECT_EQ((Result{0, "a\\nb\nc\\x1b[1m\nd\\xff\n\\x7f\\u0085\n", ""}),
              runConnectorConfig({"-s", "a\nb=1", "-s", "c\x1b[1m=1", "-s", "d\xff=1", "-s",
                                  "\x7f\xc2\x85=1", "keys"}));
}

TEST(KeysJson, IsAnArrayOfStrings) {
    EXPECT_EQ((Result{0, "[\"a\",\"b\\n\\\"\xEF\xBF\xBD\"]\n", ""}),
              runConnectorConfig({"--json", "-s", "b\n\"\xff=1", "-s", "a=1", "keys"}));
}

TEST(KeysJson, IsAnEmptyArrayIfNoKeyMatches) {
    EXPECT_EQ((Result{0, "[]\n", ""}), runConnectorConfig({"-s", "a=1", "keys", "b", "--json"}));
}

} // namespace
