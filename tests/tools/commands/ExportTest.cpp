/// connector-config get --export
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

/// Evaluates the output for the key "k" in a shell.
/// @return what the shell prints: the value of the variable
Result evaluated(const std::string& shell, const std::string& locale, const std::string& value) {
    const std::string script = "eval \"$(\"$@\")\"; printf %s \"$K\"";
    test::RunOptions options;
    options.environment = {"LC_ALL=" + locale};
    return test::run({shell, "-c", script, "sh", CONNECTOR_CONFIG_PROGRAM, "-s", "k=" + value,
                      "get", "--export", "k"},
                     "", options);
}

TEST(GetExport, WritesAssignments) {
    const TemporaryFile file("9.lives=no\nnet.port=80\n");
    EXPECT_EQ((Result{0, "NET_PORT='80'\n_9_LIVES='no'\nL='[1,2]'\n", ""}),
              runConnectorConfig({"-f", file.path(), "-s", "l:intArray=[1, 2]", "get", "--export",
                                  "net.port", "9.lives", "l"}));
}

TEST(GetExport, AShellEvaluatesEveryValueToItself) {
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    for (const std::string& value :
         {std::string(), std::string("'"), std::string("''"), std::string("it's"),
          std::string("$HOME `id` $(id) \\ \\\\ \"x\" !x ~ *"), std::string("\n a\n\n"),
          std::string("; exit 3"), std::string("'; exit 3; '"), std::string("\\'"),
          std::string("\xC3\xA4\xE2\x80\xA8"), everyByte, everyByte + everyByte}) {
        for (const char* shell : {"sh", "bash"}) {
            for (const char* locale : {"C", "C.UTF-8"}) {
                SCOPED_TRACE(shell);
                SCOPED_TRACE(locale);
                EXPECT_EQ((Result{0, value, ""}), evaluated(shell, locale, value));
            }
        }
    }
}

TEST(GetExport, TwoKeysForOneVariableAreAFailureWithoutOutput) {
    EXPECT_EQ((Result{1, "", "connector-config: Two keys for the variable A_B: a.b, a_b\n"}),
              runConnectorConfig({"-s", "k=1", "-s", "a.b=1", "-s", "a_b=2", "get", "--export", "k",
                                  "a.b", "a_b"}));
    // Also if an option is missing: what works must not depend on the configuration.
    EXPECT_EQ((Result{1, "", "connector-config: Two keys for the variable A_B: A-B, a.b\n"}),
              runConnectorConfig({"-s", "a.b=1", "get", "--export", "A-B", "a.b"}));
}

TEST(GetExport, TheSameKeyTwiceIsWrittenTwice) {
    EXPECT_EQ((Result{0, "K='1'\nK='1'\n", ""}),
              runConnectorConfig({"-s", "k=1", "get", "--export", "k", "k"}));
}

TEST(GetExport, NamesMissingOptionsAndWritesTheOthers) {
    EXPECT_EQ(
        (Result{1, "K='1'\n", "connector-config: No option with the specified key was found: x\n"}),
        runConnectorConfig({"-s", "k=1", "get", "x", "k", "--export"}));
}

TEST(GetExport, TheEmptyKeyHasNoVariable) {
    const TemporaryFile file(" = nameless\n");
    EXPECT_EQ((Result{1, "", "connector-config: No variable for the empty key\n"}),
              runConnectorConfig({"-f", file.path(), "get", "--export", ""}));
}

TEST(GetExport, AValueWithANulIsAFailure) {
    const TemporaryFile file(R"({"k": "a\u0000b", "l": 1})");
    EXPECT_EQ(
        (Result{1, "L='1'\n", "connector-config: No shell variable can hold a NUL: k\n"}),
        runConnectorConfig({"-f", file.named("f", ",format=json"), "get", "--export", "k", "l"}));
}

TEST(GetExport, DoesNotMaskSecrets) {
    EXPECT_EQ("PASSWORD='hush'\n",
              runConnectorConfig({"-s", "password=hush", "get", "--export", "password"}).output);
}

} // namespace
