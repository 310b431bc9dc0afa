/// connector-config get
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

TEST(Get, WritesOnlyTheValueAndALineBreak) {
    EXPECT_EQ((Result{0, "8080\n", ""}),
              runConnectorConfig({"-s", "net.port=8080", "get", "net.port"}));
}

TEST(Get, WritesTextUnchanged) {
    const std::string text = "a\tb\x1b[31m\r\n\\n\x7f\xff\xc2\x85";
    EXPECT_EQ((Result{0, text + "\n", ""}), runConnectorConfig({"-s", "k=" + text, "get", "k"}));
}

TEST(Get, WritesAnEmptyLineForEmptyText) {
    EXPECT_EQ((Result{0, "\n", ""}), runConnectorConfig({"-s", "k=", "get", "k"}));
}

TEST(Get, WritesUtf16TextAsUtf8) {
    EXPECT_EQ((Result{0, "h\xC3\xA9 \xF0\x9F\x98\x80\n", ""}),
              runConnectorConfig({"-s", "k:ustring=h\xC3\xA9 \xF0\x9F\x98\x80", "get", "k"}));
}

TEST(Get, WritesOtherValuesAsJsonOnOneLine) {
    const struct {
        int line;
        const char* assignment;
        const char* output;
    } rows[] = {
        {__LINE__, "k:bool=true", "true\n"},
        {__LINE__, "k:int=-5", "-5\n"},
        {__LINE__, "k:uint=4294967295", "4294967295\n"},
        {__LINE__, "k:double=0.1", "0.1\n"},
        {__LINE__, "k:boolArray=[true, false]", "[true,false]\n"},
        {__LINE__, "k:intArray=[ -1 ,2]", "[-1,2]\n"},
        {__LINE__, "k:uintArray=[4294967295]", "[4294967295]\n"},
        {__LINE__, "k:doubleArray=[1,2.5]", "[1,2.5]\n"},
        {__LINE__, R"(k:stringArray=["a","b \" \\ \n"])",
         R"(["a","b \" \\ \n"])"
         "\n"},
        {__LINE__, R"(k:ustringArray=["\u00e9"])", "[\"\xC3\xA9\"]\n"},
        {__LINE__, "k:intArray=[]", "[]\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{0, row.output, ""}),
                  runConnectorConfig({"-s", row.assignment, "get", "k"}));
    }
}

TEST(Get, EscapesControlCharactersInArraysAsJson) {
    EXPECT_EQ(
        (Result{0, "[\"\\u0000\\u001F\\u007f\\u0085\"]\n", ""}),
        runConnectorConfig({"-s", "k:stringArray=[\"\\u0000\\u001f\x7f\xc2\x85\"]", "get", "k"}));
}

TEST(Get, ReportsAMissingOptionWithTheLibrarysText) {
    EXPECT_EQ(
        (Result{1, "", "connector-config: No option with the specified key was found: net.port\n"}),
        runConnectorConfig({"get", "net.port"}));
}

TEST(Get, EscapesTheKeyInTheFailure) {
    EXPECT_EQ((Result{1, "",
                      "connector-config: No option with the specified key was found: "
                      "a\\n\\x1b\\xff\n"}),
              runConnectorConfig({"get", "a\n\x1b\xff"}));
}

TEST(Get, APrefixOfAKeyIsNotAKey) {
    EXPECT_EQ(1, runConnectorConfig({"-s", "net.port=1", "get", "net"}).status);
}

TEST(Get, FindsTheEmptyKeyOfAFile) {
    const TemporaryFile file(" = nameless\n");
    EXPECT_EQ((Result{0, "nameless\n", ""}), runConnectorConfig({"-f", file.path(), "get", ""}));
}

TEST(Get, WritesOneLineForEachKeyInTheOrderOfTheKeys) {
    EXPECT_EQ((Result{0, "2\n1\n2\n", ""}),
              runConnectorConfig({"-s", "a=1", "-d", "b:int=2", "get", "b", "a", "b"}));
}

TEST(Get, WritesTheOptionsThatExistAndNamesEachOtherOne) {
    EXPECT_EQ((Result{1, "1\n2\n",
                      "connector-config: No option with the specified key was found: x\n"
                      "connector-config: No option with the specified key was found: y\n"}),
              runConnectorConfig({"-s", "a=1", "-s", "b=2", "get", "x", "a", "y", "b"}));
}

TEST(GetJson, WritesKeySourceAndTypedValue) {
    EXPECT_EQ(
        (Result{0,
                R"({"key":"net.port","source":"override","value":{"type":"uint","value":8080}})"
                "\n",
                ""}),
        runConnectorConfig({"--json", "-s", "net.port:uint=8080", "get", "net.port"}));
}

TEST(GetJson, WritesArraysOnTheSameLine) {
    EXPECT_EQ((Result{0,
                      R"({"key":"k","source":"default","value":)"
                      R"({"type":"stringArray","value":["a","b"]}})"
                      "\n",
                      ""}),
              runConnectorConfig({"--json", "-d", R"(k:stringArray=["a","b"])", "get", "k"}));
}

TEST(GetJson, ReplacesBytesThatAreNotUtf8) {
    const TemporaryFile file("k\xff=\xc3(\xe2\x82\n");
    EXPECT_EQ(
        (Result{0,
                "{\"key\":\"k\xEF\xBF\xBD\",\"source\":\"s\xEF\xBF\xBD\",\"value\":"
                "{\"type\":\"string\",\"value\":\"\xEF\xBF\xBD(\xEF\xBF\xBD\xEF\xBF\xBD\"}}\n",
                ""}),
        runConnectorConfig({"--json", "-f", file.named("s\xfe"), "get", "k\xff"}));
}

TEST(GetJson, EscapesControlCharacters) {
    EXPECT_EQ((Result{0,
                      R"({"key":"k","source":"override","value":)"
                      R"({"type":"string","value":"a\n\u001B\u007f\u009b"}})"
                      "\n",
                      ""}),
              runConnectorConfig({"--json", "-s", "k=a\n\x1b\x7f\xc2\x9b", "get", "k"}));
}

TEST(GetJson, ReportsAMissingOptionWithTheLibrarysText) {
    EXPECT_EQ((Result{1, "", "connector-config: No option with the specified key was found: k\n"}),
              runConnectorConfig({"--json", "get", "k"}));
}

TEST(GetJson, WritesAnArrayForSeveralKeys) {
    EXPECT_EQ((Result{0,
                      R"([{"key":"b","source":"default","value":{"type":"int","value":2}},)"
                      R"({"key":"a","source":"override","value":{"type":"string","value":"1"}}])"
                      "\n",
                      ""}),
              runConnectorConfig({"--json", "-s", "a=1", "-d", "b:int=2", "get", "b", "a"}));
}

TEST(GetJson, TheArrayLacksTheOptionsThatDoNotExist) {
    const std::string missing = "connector-config: No option with the specified key was found: x\n";
    EXPECT_EQ((Result{1,
                      R"([{"key":"a","source":"override","value":{"type":"string","value":"1"}}])"
                      "\n",
                      missing}),
              runConnectorConfig({"--json", "-s", "a=1", "get", "a", "x"}));
    EXPECT_EQ((Result{1, "[]\n", missing + missing}),
              runConnectorConfig({"--json", "get", "x", "x"}));
}

} // namespace
