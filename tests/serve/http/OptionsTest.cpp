/// GET /options and GET /options/KEY
#include "serve/support/HttpClient.hpp"
#include "serve/support/ServerProcess.hpp"

#include <gtest/gtest.h>

namespace {

using test::errorOf;
using test::get;
using test::HttpAnswer;
using test::runConnectorConfig;
using test::ServerProcess;

const std::vector<std::string> sources{"-s", "b:int=1",      "-d", "a b/c=\xc3\xa4\xff",
                                       "-s", "my.token=hush"};

std::vector<std::string> withSources(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), sources.begin(), sources.end());
    return arguments;
}

TEST(GetOptions, AnswersAsShowDoes) {
    const ServerProcess server({}, sources);
    const HttpAnswer answer = get(server.port(), "/options");
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ("application/json", answer.headers.at("content-type"));
    EXPECT_EQ(runConnectorConfig(withSources({"show", "--json"})).output, answer.body);
    EXPECT_EQ(answer.body.npos, answer.body.find("hush"));
}

TEST(GetOptions, OfNothing_IsAnEmptyArray) {
    const ServerProcess server;
    EXPECT_EQ("[]\n", get(server.port(), "/options?anything").body);
}

TEST(GetOption, AnswersAsGetDoes) {
    const ServerProcess server({}, sources);
    EXPECT_EQ(runConnectorConfig(withSources({"get", "--json", "b"})).output,
              get(server.port(), "/options/b").body);
    for (const char* path : {"/options/a%20b/c", "/options/a%20b%2fc", "/options/%61%20b%2Fc"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(runConnectorConfig(withSources({"get", "--json", "a b/c"})).output,
                  get(server.port(), path).body);
    }
}

TEST(GetOption, OfASecret_IsStars) {
    const ServerProcess server({}, sources);
    EXPECT_EQ(R"({"key":"my.token","source":"override","value":{"type":"string","value":"******"}})"
              "\n",
              get(server.port(), "/options/my.token").body);
}

TEST(GetOption, OfASecretOfTheUsers_IsStars) {
    const ServerProcess server({"--secret", "B"}, sources);
    EXPECT_NE(std::string::npos, get(server.port(), "/options/b").body.find("******"));
    EXPECT_NE(std::string::npos, get(server.port(), "/options/my.token").body.find("******"));
}

TEST(GetOption, AnAbsentKey_Is404) {
    const ServerProcess server;
    for (const char* path : {"/options/none", "/options/"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(404, get(server.port(), path).status);
    }
    EXPECT_EQ("No option with the specified key was found: n o",
              errorOf(get(server.port(), "/options/n%20o").body));
}

TEST(GetOption, AKeyThatIsNotPercentEncoded_Is400) {
    const ServerProcess server;
    for (const char* path : {"/options/%", "/options/%4", "/options/%zz"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(400, get(server.port(), path).status);
    }
}

} // namespace
