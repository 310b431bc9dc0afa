/// serve without --http: one request and one reply per line.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using test::Process;
using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

using Arguments = std::vector<std::string>;

constexpr std::size_t longest = 1024 * 1024;

/// @return the replies to these lines
std::string replies(const std::string& lines, Arguments arguments = {}) {
    arguments.emplace_back("serve");
    const Result result = runConnectorConfig(arguments, lines);
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.errors);
    return result.output;
}

std::string errorLine(const std::string& type, const std::string& text) {
    return R"({"error":{"type":")" + type + R"(","text":")" + text + "\"}}\n";
}

const char getPort[] =
    R"({"id": 1, "type": "connector/configuration/ConfigurationGet", "message": {"key": "net.port"}})";
const char portReply[] =
    R"("type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"net.port","source":"override","value":{"type":"int","value":80}}})"
    "\n";

TEST(ServeLines, RepliesBeforeTheNextRequestArrives) {
    Process process(test::connectorConfig({"-s", "net.port:int=80", "serve"}));
    for (int i = 0; i < 3; ++i) {
        process.write(std::string(getPort) + "\n");
        EXPECT_EQ(std::string("{\"id\":1,") + portReply, process.readLine() + "\n");
    }
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST(ServeLines, WaitsForAPipeThatDoesNotBlock) {
    test::RunOptions options;
    options.nonBlocking = true;
    Process process(test::connectorConfig({"-s", "net.port:int=80", "serve"}), options);
    for (int i = 0; i < 3; ++i) {
        process.write(std::string(getPort) + "\n");
        EXPECT_EQ(std::string("{\"id\":1,") + portReply, process.readLine() + "\n");
    }
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST(ServeLines, ReportsThatStandardInputCannotBeRead) {
    EXPECT_EQ((Result{1, "", "connector-config: Input could not be read: Is a directory\n"}),
              test::run({"/bin/sh", "-c", "\"$0\" serve < /", CONNECTOR_CONFIG_PROGRAM}));
}

TEST(ServeLines, RepliesInOrder) {
    const TemporaryFile file("a=1\n");
    const std::string lines =
        R"({"id":1,"type":"connector/configuration/ConfigurationSet","message":{"key":"k","value":{"type":"int","value":1}}})"
        "\n"
        R"({"id":2,"type":"connector/configuration/ConfigurationSet","message":{"key":"k","source":"default","value":{"type":"int","value":2}}})"
        "\n"
        R"({"id":3,"type":"connector/configuration/AddPropertyFileSource","message":{"name":"f","group":"g","path":")" +
        file.path() +
        "\"}}\n"
        R"({"id":4,"type":"connector/configuration/ConfigurationKeys","message":{}})"
        "\n"
        R"({"id":5,"type":"connector/configuration/ConfigurationGet","message":{"key":"none"}})"
        "\n";
    EXPECT_EQ(
        R"({"id":1,"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"k","source":"","value":{"type":"int","value":1}}})"
        "\n"
        R"({"id":2,"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"k","source":"default","value":{"type":"int","value":2}}})"
        "\n"
        R"({"id":3,"type":"connector/Message","message":{}})"
        "\n"
        R"({"id":4,"type":"connector/configuration/ConfigurationKeysResponse","message":{"keys":["g.a","k"]}})"
        "\n"
        R"({"id":5,"type":"connector/configuration/ConfigurationOptionResponse","message":{}})"
        "\n",
        replies(lines));
}

TEST(ServeLines, ReturnsTheIdUnchanged) {
    const struct {
        int line;
        const char* sent;
        const char* returned;
    } rows[] = {
        {__LINE__, "1", "1"},
        {__LINE__, "1.0", "1.0"},
        {__LINE__, "-0", "-0"},
        {__LINE__, "1E+2", "1E+2"},
        {__LINE__, "1e400", "1e400"},
        {__LINE__, "12345678901234567890123", "12345678901234567890123"},
        {__LINE__, "null", "null"},
        {__LINE__, "false", "false"},
        {__LINE__, R"("")", R"("")"},
        {__LINE__, R"("a \" \\ \u0000 \/ b")", R"("a \" \\ \u0000 \/ b")"},
        {__LINE__, R"("Ä,}")", R"("Ä,}")"},
        {__LINE__, R"({ "a" : [ 1 , {"id": 2} ] })", R"({"a":[1,{"id":2}]})"},
        {__LINE__, "[\t]", "[]"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const std::string request = std::string(R"({"type":"connector/configuration/)") +
                                    R"(ConfigurationGet","id":)" + row.sent +
                                    R"( ,"message":{"key":"net.port","id":99}})";
        EXPECT_EQ(std::string("{\"id\":") + row.returned + "," + portReply,
                  replies(request, {"-s", "net.port:int=80"}));
    }
}

TEST(ServeLines, TheReplyToARequestWithoutAnIdHasNone) {
    EXPECT_EQ(
        std::string("{") + portReply,
        replies(
            R"({"type":"connector/configuration/ConfigurationGet","message":{"key":"net.port"}})",
            {"-s", "net.port:int=80"}));
}

TEST(ServeLines, TheLastOfTwoIdsCounts) {
    EXPECT_EQ(R"({"id":2,"error":{"type":"std::invalid_argument","text":"Unknown message type: "}})"
              "\n",
              replies(R"({"id":1,"\u0069d":2})"));
}

TEST(ServeLines, AFailureHasTypeAndTextOfTheException) {
    const std::string set =
        R"({"id":1,"type":"connector/configuration/ConfigurationSet","message":{"key":"k","source":"nobody"}})";
    EXPECT_EQ(
        R"({"id":1,"error":{"type":"std::runtime_error","text":"Source not found or not writable: k, nobody"}})"
        "\n",
        replies(set));
    const TemporaryFile file("");
    const std::string add =
        R"({"id":2,"type":"connector/configuration/AddPropertyFileSource","message":{"name":"default","path":")" +
        file.path() + "\"}}";
    EXPECT_EQ(
        R"({"id":2,"error":{"type":"std::invalid_argument","text":"Source with the requested name already exists: default"}})"
        "\n",
        replies(add));
}

TEST(ServeLines, AReplyTypeIsRefusedAsARequest) {
    EXPECT_EQ(errorLine("std::invalid_argument",
                        "Incorrect message type. Expected: "
                        "N9connector14ServiceMessageINS_13configuration28ConfigurationServiceProvid"
                        "erEEE but found N9connector7MessageE"),
              replies(R"({"type":"connector/Message","message":{}})"));
}

TEST(ServeLines, RepliesToInvalidRequestsWithoutAnId) {
    const struct {
        int line;
        std::string request;
        const char* text;
    } rows[] = {
        {__LINE__, "nonsense", "A request is a JSON object"},
        {__LINE__, "[1]", "A request is a JSON object"},
        {__LINE__, "5", "A request is a JSON object"},
        {__LINE__, std::string(1, '\0'), "A request is a JSON object"},
        {__LINE__, "\xEF\xBB\xBF{}", "A request is a JSON object"},
        {__LINE__, "{\"a\":\"\xff\"}", "Text is not valid UTF-8"},
        {__LINE__, "{} {}", "Text is not valid JSON: Excess characters found after JSON end."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(errorLine("std::invalid_argument", row.text), replies(row.request + "\n"));
    }
}

TEST(ServeLines, IgnoresBlankLines) {
    EXPECT_EQ("", replies("\n\n   \n\t\r\n \n"));
    EXPECT_EQ("", replies(std::string(longest, ' ') + "\n"));
}

TEST(ServeLines, ALineThatIsTooLongIsRefusedAndTheNextOneServed) {
    const std::string refusal =
        errorLine("std::invalid_argument", "A request is at most 1 MiB long");
    for (const char padding : {' ', '[', '\0', '9'}) {
        SCOPED_TRACE(static_cast<int>(padding));
        EXPECT_EQ(refusal + "{\"id\":1," + portReply,
                  replies(std::string(3 * longest, padding) + "\n" + getPort + "\n",
                          {"-s", "net.port:int=80"}));
    }
    EXPECT_EQ(refusal, replies(std::string(longest + 1, ' ')));
}

TEST(ServeLines, ALineOfTheMaximumLengthIsServed) {
    std::string request = getPort;
    request.append(longest - request.size(), ' ');
    EXPECT_EQ(std::string("{\"id\":1,") + portReply, replies(request, {"-s", "net.port:int=80"}));
}

TEST(ServeLines, RepliesToRequestsOfAnyNesting) {
    for (const std::size_t depth : {65u, 1000u, 400000u}) {
        SCOPED_TRACE(depth);
        const std::string nested = std::string(depth, '[') + std::string(depth, ']');
        const std::string error =
            errorLine("std::invalid_argument", "A request has at most 64 levels of nesting");
        EXPECT_EQ(error, replies("{\"a\":" + nested + "}"));
        EXPECT_EQ("{\"id\":7," + error.substr(1), replies("{\"id\":7,\"a\":" + nested + "}"));
        EXPECT_EQ("{\"id\":7," + error.substr(1), replies("{\"a\":" + nested + ",\"id\":7}"));
        EXPECT_EQ("{\"id\":" + nested + "," + error.substr(1), replies("{\"id\":" + nested + "}"));
        EXPECT_EQ(errorLine("std::invalid_argument", "A request is a JSON object"),
                  replies(nested));
    }
}

TEST(ServeLines, RefusesTooManyElementsWithTheId) {
    std::string elements = "{}";
    for (int i = 0; i < 100000; ++i)
        elements += ",{}";
    EXPECT_EQ("{\"id\":7," + errorLine("connector::service::TooManyElements",
                                       "A request has too many elements: they would take more than "
                                       "4 MiB of memory")
                                 .substr(1),
              replies("{\"type\":[" + elements + "],\"id\":7}"));
    EXPECT_EQ("{\"id\":1," + std::string(portReply),
              replies("{\"x\":[" + elements + "]," + std::string(getPort).substr(1),
                      {"-s", "net.port:int=80"}));
}

TEST(ServeLines, AddsFilesAsTheMessageSays) {
    const TemporaryFile file("k=1\n");
    const auto add = [&file](const std::string& members) {
        return R"({"type":"connector/configuration/AddPropertyFileSource","message":{"name":"f",)" +
               members + R"("path":")" + file.path() + "\"}}\n";
    };
    const std::string added = R"({"type":"connector/Message","message":{}})"
                              "\n";
    const std::string set =
        R"({"type":"connector/configuration/ConfigurationSet","message":{"key":"k","value":{"type":"int","value":1}}})";
    EXPECT_EQ(added +
                  errorLine("std::runtime_error", "PropertyFileSource does not support writing"),
              replies(add(R"("order":-1,"readOnly":false,)") + set));
    EXPECT_EQ(added +
                  errorLine("std::runtime_error", "PropertyFileSource does not support writing"),
              replies(add(R"("readOnly":false,)") + set, {"-f", file.named("g", ",order=1")}));
}

TEST(ServeLines, ReadsNumbersOfAnySize) {
    const std::string digits(1000, '9');
    EXPECT_EQ(
        R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"k","source":"","value":{"type":"int","value":0}}})"
        "\n"
        R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"s","source":"","value":{"type":"string","value":")" +
            digits + "\"}}}\n",
        replies(
            R"({"type":"connector/configuration/ConfigurationSet","message":{"key":"k","value":{"type":"int","value":1e999}}})"
            "\n"
            R"({"type":"connector/configuration/ConfigurationSet","message":{"key":"s","value":{"type":"string","value":)" +
            digits + "}}}"));
}

TEST(ServeLines, ReplacesBytesThatAreNotUtf8InTheReply) {
    const TemporaryFile file("k=a\xff"
                             "b\n");
    EXPECT_EQ(
        R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"k","source":"f","value":{"type":"string","value":"a)"
        "\xEF\xBF\xBD"
        "b\"}}}\n",
        replies(R"({"type":"connector/configuration/ConfigurationGet","message":{"key":"k"}})",
                {"-f", file.named("f")}));
}

TEST(ServeLines, EscapesLineBreaksInTheReply) {
    const std::string output = replies(
        R"({"type":"connector/configuration/ConfigurationSet","message":{"key":"k","value":{"type":"string","value":"a\nb\r\u2028"}}})");
    EXPECT_EQ(output.size() - 1, output.find('\n'));
    EXPECT_EQ(output.npos, output.find('\r'));
    EXPECT_NE(output.npos, output.find(R"("a\nb\r\u2028")"));
}

TEST(ServeLines, DoesNotMaskThePreviousValueOfASecret) {
    EXPECT_EQ(
        R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"password","source":"","value":{"type":"string","value":"old"}}})"
        "\n",
        replies(
            R"({"type":"connector/configuration/ConfigurationSet","message":{"key":"password","value":{"type":"string","value":"new"}}})",
            {"-s", "password=old"}));
}

TEST(ServeLines, DoesNotMaskSecrets) {
    EXPECT_EQ(
        R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":"password","source":"override","value":{"type":"string","value":"x"}}})"
        "\n",
        replies(
            R"({"type":"connector/configuration/ConfigurationGet","message":{"key":"password"}})",
            {"-s", "password=x"}));
}

} // namespace
