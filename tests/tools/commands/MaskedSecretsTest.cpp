/// Where secrets are masked, and where not.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

const std::vector<std::string> source{"-s", "db.Password=hush", "-s", "db.user=me"};

Result runWithSecret(std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), source.begin(), source.end());
    return runConnectorConfig(arguments, input);
}

TEST(MaskedSecrets, InShow) {
    EXPECT_EQ("KEY          TYPE    VALUE   SOURCE\n"
              "db.Password  string  ******  override\n"
              "db.user      string  me      override\n",
              runWithSecret({"show"}).output);
    EXPECT_EQ(
        R"([{"key":"db.Password","source":"override","value":{"type":"string","value":"******"}}])"
        "\n",
        runWithSecret({"show", "--json", "db.P"}).output);
}

TEST(MaskedSecrets, InExplain) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"explain", "db.Password"},
          std::vector<std::string>{"explain", "db.Password", "--json"}}) {
        const std::string output = runWithSecret(arguments).output;
        EXPECT_EQ(output.npos, output.find("hush")) << output;
        EXPECT_NE(output.npos, output.find("******")) << output;
    }
}

TEST(MaskedSecrets, InWatch) {
    EXPECT_EQ("db.Password = ******  (override)\ndb.Password = ******  (override)\n",
              runWithSecret({"watch", "db.Password"}, "set db.Password=more\n").output);
    EXPECT_EQ(
        R"({"key":"db.Password","source":"override","value":{"type":"string","value":"******"}})"
        "\n",
        runWithSecret({"watch", "--json", "db.Password"}).output);
}

TEST(MaskedSecrets, InTheFailureOfAWatchLine) {
    EXPECT_EQ("connector-config: Value of db.password does not convert to int: ******\n"
              "connector-config: Value of my.Token does not convert to intArray: ******\n"
              "connector-config: Value of net.port does not convert to int: ******\n"
              "connector-config: Value of db.user does not convert to int: me\n",
              runConnectorConfig({"--secret", "net.*", "-s", "a=", "watch", "a"},
                                 "set db.password:int=hush\nset my.Token:intArray=hush @default\n"
                                 "set net.port:int=hush\nset db.user:int=me\n")
                  .errors);
}

TEST(MaskedSecrets, InUsageErrors) {
    const std::string hidden = " does not convert to int: ******";
    for (const char* option : {"-s", "-d"}) {
        EXPECT_EQ(test::usageError("Value of db.password" + hidden),
                  runConnectorConfig({option, "db.password:int=hush", "keys"}).errors);
        // The position of --secret does not matter.
        EXPECT_EQ(test::usageError("Value of [a]" + hidden),
                  runConnectorConfig({option, "[a]:int=hush", "keys", "--secret", "[A]"}).errors);
        EXPECT_EQ(test::usageError("Value of db.user does not convert to int: me"),
                  runConnectorConfig({option, "db.user:int=me", "keys"}).errors);
    }
}

TEST(MaskedSecrets, InTheTraceOfAFile) {
    const TemporaryFile file("password = hush\na = password = hush\nb=1\nsecret=hush");
    const std::string errors =
        runConnectorConfig({"--trace", "-f", file.named("f"), "get", "b"}).errors;
    EXPECT_NE(errors.npos, errors.find("Parsed property: password = ******\n")) << errors;
    EXPECT_NE(errors.npos, errors.find("Parsed final property: secret = ******")) << errors;
    EXPECT_NE(errors.npos, errors.find("Parsed property: b = 1\n")) << errors;
    // The line does not tell whether the key is "a" or "a = password".
    EXPECT_NE(errors.npos, errors.find("Parsed property: a = password = ******\n")) << errors;
}

TEST(MaskedSecrets, InTheTraceOfAFileWithASecretGroup) {
    const TemporaryFile file("a=hush\n");
    for (const char* group : {",group=tokens", ",group=tokens."}) {
        const std::string errors =
            runConnectorConfig({"--trace", "-f", file.named("f", group), "keys"}).errors;
        EXPECT_NE(errors.npos, errors.find("Parsed property: a = ******\n")) << errors;
    }
}

TEST(MaskedSecrets, InTheTraceOfAFileThatAMessageAdds) {
    const TemporaryFile file("a=hush\npassword=hush\n");
    const std::string errors =
        runConnectorConfig(
            {"--trace", "serve"},
            R"({"type":"connector/configuration/AddPropertyFileSource","message":{"name":"f","group":"token","path":")" +
                file.path() + "\"}}\n")
            .errors;
    EXPECT_NE(errors.npos, errors.find("Parsed property: a = ******\n")) << errors;
    EXPECT_EQ(errors.npos, errors.find("hush")) << errors;
}

TEST(MaskedSecrets, NotInGet) {
    EXPECT_EQ("hush\n", runWithSecret({"get", "db.Password"}).output);
    EXPECT_EQ(
        R"({"key":"db.Password","source":"override","value":{"type":"string","value":"hush"}})"
        "\n",
        runWithSecret({"get", "--json", "db.Password"}).output);
}

TEST(MaskedSecrets, SecretOptionsAddToTheDefaults) {
    EXPECT_EQ("KEY          TYPE    VALUE   SOURCE\n"
              "db.Password  string  ******  override\n"
              "db.user      string  ******  override\n",
              runWithSecret({"--secret", "x", "show", "--secret", "DB.?ser"}).output);
    EXPECT_EQ("KEY  TYPE    VALUE   SOURCE\n"
              "[a]  string  ******  override\n",
              runConnectorConfig({"-s", "[a]=1", "--secret", "[A]", "show"}).output);
}

} // namespace
