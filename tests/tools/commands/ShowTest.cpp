/// connector-config show
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

TEST(Show, PrintsAnAlignedTableSortedByKey) {
    const TemporaryFile file("net.port=9090\nlog.level=info\n");
    EXPECT_EQ((Result{0,
                      "KEY        TYPE      VALUE  SOURCE\n"
                      "log.level  string    info   site\n"
                      "net.port   uint      8080   override\n"
                      "sizes      intArray  [1,2]  default\n",
                      ""}),
              runConnectorConfig({"-f", file.named("site"), "-s", "net.port:uint=8080", "-d",
                                  "sizes:intArray=[1,2]", "show"}));
}

TEST(Show, SelectsKeysByPrefix) {
    EXPECT_EQ((Result{0,
                      "KEY       TYPE    VALUE  SOURCE\n"
                      "net.port  string  1      override\n",
                      ""}),
              runConnectorConfig({"-s", "net.port=1", "-s", "log=2", "show", "net."}));
}

TEST(Show, SucceedsWithoutOutputIfNoKeyMatches) {
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"-s", "a=1", "show", "b"}));
}

TEST(Show, NamesEachTypeByItsTag) {
    EXPECT_EQ((Result{0,
                      "KEY  TYPE          VALUE   SOURCE\n"
                      "a    bool          true    override\n"
                      "b    int           -1      override\n"
                      "c    uint          1       override\n"
                      "d    double        1.5     override\n"
                      "e    ustring       u       override\n"
                      "f    string        s       override\n"
                      "g    boolArray     [true]  override\n"
                      "h    intArray      [-1]    override\n"
                      "i    uintArray     [1]     override\n"
                      "j    doubleArray   [1.5]   override\n"
                      "k    stringArray   [\"s\"]   override\n"
                      "l    ustringArray  [\"u\"]   override\n",
                      ""}),
              runConnectorConfig({"-s",  "a:bool=true",
                                  "-s",  "b:int=-1",
                                  "-s",  "c:uint=1",
                                  "-s",  "d:double=1.5",
                                  "-s",  "e:ustring=u",
                                  "-s",  "f:string=s",
                                  "-s",  "g:boolArray=[true]",
                                  "-s",  "h:intArray=[-1]",
                                  "-s",  "i:uintArray=[1]",
                                  "-s",  "j:doubleArray=[1.5]",
                                  "-s",  "k:stringArray=[\"s\"]",
                                  "-s",  "l:ustringArray=[\"u\"]",
                                  "show"}));
}

TEST(Show, AlignsWideAndCombiningCharacters) {
    EXPECT_EQ((Result{0,
                      "KEY  TYPE    VALUE  SOURCE\n"
                      "a    string  \xE6\xBC\xA2\xE5\xAD\x97   override\n"
                      "b    string  e\xCC\x81      override\n"
                      "c    string  plain  override\n",
                      ""}),
              runConnectorConfig({"-s", "a=\xE6\xBC\xA2\xE5\xAD\x97", "-s", "b=e\xCC\x81", "-s",
                                  "c=plain", "show"}));
}

TEST(Show, AlignsWideCharactersInALocaleWithoutThem) {
    test::RunOptions withoutUnicode;
    withoutUnicode.environment = {"LC_ALL=C"};
    EXPECT_EQ((Result{0,
                      "KEY  TYPE    VALUE  SOURCE\n"
                      "a    string  \xE6\xBC\xA2\xE5\xAD\x97   override\n",
                      ""}),
              runConnectorConfig({"-s", "a=\xE6\xBC\xA2\xE5\xAD\x97", "show"}, "", withoutUnicode));
}

TEST(Show, EscapesControlCharactersInKeysNamesAndValues) {
    const TemporaryFile file("k\x1b=v\rw\n");
    EXPECT_EQ((Result{0,
                      "KEY    TYPE    VALUE  SOURCE\n"
                      "a\\nb   string  x\\ty   override\n"
                      "k\\x1b  string  v      s\\x07\n",
                      ""}),
              runConnectorConfig({"-f", file.named("s\x07"), "-s", "a\nb=x\ty", "show"}));
}

TEST(Show, DoesNotTruncateValuesInAPipe) {
    const std::string value(500, 'x');
    const Result result = runConnectorConfig({"-s", "k=" + value, "show"});
    EXPECT_NE(std::string::npos, result.output.find("k    string  " + value + "  override\n"));
}

TEST(Show, LeavesTheColumnOfAnEmptyValueBlank) {
    EXPECT_EQ((Result{0,
                      "KEY  TYPE    VALUE  SOURCE\n"
                      "k    string         override\n",
                      ""}),
              runConnectorConfig({"-s", "k=", "show"}));
}

TEST(ShowJson, IsAnArraySortedByKey) {
    const TemporaryFile file("p.b=2\nc=3\n");
    EXPECT_EQ((Result{0,
                      R"([{"key":"p.a","source":"override","value":{"type":"bool","value":true}},)"
                      R"({"key":"p.b","source":"site","value":{"type":"string","value":"2"}}])"
                      "\n",
                      ""}),
              runConnectorConfig(
                  {"--json", "-f", file.named("site"), "-s", "p.a:bool=true", "show", "p."}));
}

TEST(ShowJson, IsOneLineOfValidJsonForAnyBytes) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte)
        bytes += byte == '=' || byte == ',' ? '.' : static_cast<char>(byte);
    const TemporaryFile file("z=1\n");
    const Result result =
        runConnectorConfig({"--json", "-s", bytes + "=" + bytes, "-f", file.named(bytes), "show"});
    EXPECT_EQ(result.output.size() - 1, result.output.find_first_of("\n\r\x7f"));
    const auto options =
        Poco::JSON::Parser().parse(result.output).extract<Poco::JSON::Array::Ptr>();
    const std::string key = options->getObject(0)->getValue<std::string>("key");
    EXPECT_EQ(key, options->getObject(0)->getObject("value")->getValue<std::string>("value"));
    EXPECT_EQ(key, options->getObject(1)->getValue<std::string>("source"));
    EXPECT_EQ(bytes.substr(0, 127), key.substr(0, 127));
    EXPECT_EQ(127u + 3 * 128, key.size()); // each byte above 0x7f has become U+FFFD
}

TEST(ShowJson, IsAnEmptyArrayIfNoKeyMatches) {
    EXPECT_EQ((Result{0, "[]\n", ""}), runConnectorConfig({"--json", "show"}));
}

} // namespace
