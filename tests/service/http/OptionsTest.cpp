/// GET /options and GET /options/KEY
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using test::errorOf;
using test::get;
using test::HttpClient;
using test::HttpResponse;
using test::post;
using test::runConnectorConfig;
using test::ServerProcess;
using test::setMessage;

#if defined(__has_feature)
#define TEST_HAS_FEATURE(feature) __has_feature(feature)
#else
#define TEST_HAS_FEATURE(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) ||                               \
    TEST_HAS_FEATURE(address_sanitizer) || TEST_HAS_FEATURE(thread_sanitizer)
constexpr bool withSanitizer = true;
#else
constexpr bool withSanitizer = false;
#endif

const std::vector<std::string> sources{"-s", "b:int=1",      "-d", "a b/c=\xc3\xa4\xff",
                                       "-s", "my.token=hush"};

std::vector<std::string> withSources(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), sources.begin(), sources.end());
    return arguments;
}

TEST(GetOptions, RespondsLikeShow) {
    const ServerProcess server({}, sources);
    const HttpResponse response = get(server.port(), "/options");
    EXPECT_EQ(200, response.status);
    EXPECT_EQ("application/json", response.headers.at("content-type"));
    EXPECT_EQ(runConnectorConfig(withSources({"show", "--json"})).output, response.body);
    EXPECT_EQ(response.body.npos, response.body.find("hush"));
}

TEST(GetOptions, RespondsWithAnEmptyArrayIfThereAreNoOptions) {
    const ServerProcess server;
    EXPECT_EQ("[]\n", get(server.port(), "/options").body);
}

/// @return the peak memory of a process in KiB
std::size_t peakMemory(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    const std::string wanted = "VmHWM:";
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, wanted.size(), wanted) == 0)
            return std::stoul(line.substr(wanted.size()));
    }
    throw std::runtime_error("VmHWM is missing");
}

TEST(GetOptions, ManyRequestsAtOnceTakeMemoryForTheirTextsOnly) {
    constexpr std::size_t size = 500000;
    constexpr std::size_t count = 10;
    constexpr std::size_t clients = 9;
    ServerProcess server({"--writable", ""});
    for (std::size_t i = 0; i < count; ++i)
        ASSERT_EQ(
            200, post(server.port(), setMessage(std::to_string(i), std::string(size, 'x'))).status);
    const std::size_t before = peakMemory(server.process().processId());
    std::vector<HttpClient> waiting;
    for (std::size_t i = 0; i < clients; ++i) {
        waiting.emplace_back(server.port());
        waiting.back().get("/options"); // without reading the response
    }
    for (HttpClient& client : waiting)
        EXPECT_GT(client.response().body.size(), size * count);
    const std::size_t more = peakMemory(server.process().processId()) - before;
    if (withSanitizer)
        GTEST_SKIP() << "Sanitizers change the memory usage: " << more << " KiB";
    const std::size_t text = size * count / 1024;
    EXPECT_LT(more, 3 * clients * text); // the allocator keeps some freed memory
}

TEST(GetOption, RespondsLikeGet) {
    const ServerProcess server({}, sources);
    EXPECT_EQ(runConnectorConfig(withSources({"get", "--json", "b"})).output,
              get(server.port(), "/options/b").body);
    for (const char* path : {"/options/a%20b/c", "/options/a%20b%2fc", "/options/%61%20b%2Fc"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(runConnectorConfig(withSources({"get", "--json", "a b/c"})).output,
                  get(server.port(), path).body);
    }
}

TEST(GetOption, MasksSecrets) {
    const ServerProcess server({}, sources);
    EXPECT_EQ(R"({"key":"my.token","source":"override","value":{"type":"string","value":"******"}})"
              "\n",
              get(server.port(), "/options/my.token").body);
}

TEST(GetOption, MasksKeysThatMatchTheSecretOption) {
    const ServerProcess server({"--secret", "B"}, sources);
    EXPECT_NE(std::string::npos, get(server.port(), "/options/b").body.find("******"));
    EXPECT_NE(std::string::npos, get(server.port(), "/options/my.token").body.find("******"));
}

TEST(GetOption, ReportsAMissingOptionWithStatus404) {
    const ServerProcess server;
    for (const char* path : {"/options/none", "/options/"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(404, get(server.port(), path).status);
    }
    EXPECT_EQ("No option with the specified key was found: n o",
              errorOf(get(server.port(), "/options/n%20o").body));
}

TEST(GetOption, ReportsTheWholeKeyIfItContainsANulCharacter) {
    const ServerProcess server;
    EXPECT_EQ(std::string("No option with the specified key was found: a\0b", 47),
              errorOf(get(server.port(), "/options/a%00b").body));
}

TEST(GetOption, RejectsAKeyThatIsNotPercentEncoded) {
    const ServerProcess server;
    for (const char* path : {"/options/%", "/options/%4", "/options/%zz"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(400, get(server.port(), path).status);
    }
}

} // namespace
