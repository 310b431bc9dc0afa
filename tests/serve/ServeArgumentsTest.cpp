/// The command line of serve.
#include "support/TemporaryDirectory.hpp"
#include "serve/support/ServerProcess.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::wrongUse;

TEST(ServeArguments, ThatAreWrong_AreWrongUse) {
    const struct {
        int line;
        std::vector<std::string> arguments;
        const char* message;
    } rows[] = {
        {__LINE__, {"serve", "x"}, "Unexpected argument: x"},
        {__LINE__, {"serve", "--http", "nonsense"}, "Not of the form HOST:PORT: nonsense"},
        {__LINE__, {"serve", "--http", "[::1]"}, "Not of the form HOST:PORT: [::1]"},
        {__LINE__, {"serve", "--http"}, "--http: 1 required HOST:PORT missing"},
        {__LINE__, {"serve", "--writable", "a"}, "--writable requires --http"},
        {__LINE__, {"serve", "--property-root", "/"}, "--property-root requires --http"},
        {__LINE__, {"serve", "--token-file", "x"}, "--token-file requires --http"},
        {__LINE__, {"keys", "--http", "1"}, "Unexpected argument: --http"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{2, "", wrongUse(row.message)}), runConnectorConfig(row.arguments));
    }
}

TEST(ServeArguments, ThatLeadNowhere_AreAFailureAtTheStart) {
    const test::TemporaryDirectory directory;
    const std::string none = (directory.path / "none").string();
    const std::string empty = directory.write("empty", "\n").string();
    const struct {
        int line;
        std::vector<std::string> arguments;
        std::string message;
    } rows[] = {
        {__LINE__, {"--token-file", none}, "Token file could not be read: " + none},
        {__LINE__, {"--token-file", empty}, "Token file is empty: " + empty},
        {__LINE__, {"--property-root", none}, "Not a directory: " + none},
        {__LINE__, {"--property-root", ""}, "Not a directory: "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        std::vector<std::string> arguments{"serve", "--http", "127.0.0.1:0"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        EXPECT_EQ((Result{1, "", "connector-config: " + row.message + "\n"}),
                  runConnectorConfig(arguments));
    }
}

TEST(ServeArguments, AnAddressThatIsTaken_IsAFailure) {
    test::ServerProcess server;
    const std::string address = "127.0.0.1:" + std::to_string(server.port());
    const Result result = runConnectorConfig({"serve", "--http", address});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.output);
    EXPECT_EQ(0u, result.errors.find("connector-config: Cannot listen on " + address + ": "));
}

} // namespace
