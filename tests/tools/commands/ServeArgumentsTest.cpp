/// The arguments of serve.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

TEST(ServeArguments, InvalidOnesAreUsageErrors) {
    const struct {
        int line;
        std::vector<std::string> arguments;
        const char* message;
    } rows[] = {
        {__LINE__, {"serve", "x"}, "Unexpected argument: x"},
        {__LINE__,
         {"serve", "--http", "nonsense"},
         "Not of the form HOST:PORT or unix:PATH: nonsense"},
        {__LINE__, {"serve", "--http", "[::1]"}, "Not of the form HOST:PORT or unix:PATH: [::1]"},
        {__LINE__, {"serve", "--http", "unix:"}, "Not of the form HOST:PORT or unix:PATH: unix:"},
        {__LINE__, {"serve", "--http"}, "--http: 1 required HOST:PORT|unix:PATH missing"},
        {__LINE__, {"serve", "--allow-host", "a"}, "--allow-host requires --http"},
        {__LINE__, {"serve", "--http", "1", "--allow-host", ""}, "Not the name of a host: "},
        {__LINE__, {"serve", "--http", "1", "--allow-host", "*"}, "Not the name of a host: *"},
        {__LINE__, {"serve", "--http", "1", "--allow-host", "a:1"}, "Not the name of a host: a:1"},
        {__LINE__,
         {"serve", "--http", "1", "--allow-host", "[::1"},
         "Not the name of a host: [::1"},
        {__LINE__, {"serve", "--http", "1", "--max-file-size", "1k"}, "Not a number of bytes: 1k"},
        {__LINE__, {"serve", "--http", "1", "--tls-cert", "a"}, "--tls-cert requires --tls-key"},
        {__LINE__, {"serve", "--http", "1", "--client-ca", "a"}, "--client-ca requires --tls-cert"},
        {__LINE__, {"serve", "--writable", "a"}, "--writable requires --http"},
        {__LINE__, {"serve", "--property-root", "/"}, "--property-root requires --http"},
        {__LINE__, {"serve", "--token-file", "x"}, "--token-file requires --http"},
        {__LINE__, {"keys", "--http", "1"}, "Unexpected argument: --http"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{2, "", usageError(row.message)}), runConnectorConfig(row.arguments));
    }
}

TEST(ServeArguments, ReportsUnusableFilesAndDirectoriesAtStartup) {
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

/// A server that reads its token from a pipe, and is waiting for it.
class TokenPipe : public testing::Test {
protected:
    TokenPipe() {
        EXPECT_EQ(0, ::mkfifo(path.c_str(), 0600));
        process.emplace(
            test::connectorConfig({"serve", "--http", "127.0.0.1:0", "--token-file", path}));
        descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC); // blocks until the server reads
        EXPECT_GE(descriptor, 0);
    }
    ~TokenPipe() override { close(); }

    void close() {
        if (descriptor >= 0)
            ::close(descriptor);
        descriptor = -1;
    }

    const test::TemporaryDirectory directory;
    const std::string path = (directory.path / "pipe").string();
    std::optional<test::Process> process;
    int descriptor = -1;
};

TEST_F(TokenPipe, CanSupplyTheToken) {
    ASSERT_EQ(3, ::write(descriptor, "abc", 3));
    close();
    const std::string line = process->readLine();
    const std::string beginning = "listening on http://127.0.0.1:";
    ASSERT_EQ(0u, line.find(beginning));
    const auto port = static_cast<std::uint16_t>(std::stoi(line.substr(beginning.size())));
    EXPECT_EQ(401, test::get(port, "/options").status);
    EXPECT_EQ(200, test::get(port, "/options", {"Authorization: Bearer abc"}).status);
    process->signal(SIGTERM);
    EXPECT_EQ((Result{0, "", ""}), process->finish());
}

TEST_F(TokenPipe, SignalsEndTheProgramWhileItWaitsForTheToken) {
    process->signal(SIGINT);
    close(); // a program that ignores the signal exits, too, but with another status
    EXPECT_EQ((Result{128 + SIGINT, "", ""}), process->finish());
}

TEST_F(TokenPipe, AHangupDoesNotEndTheProgramWhileItWaitsForTheToken) {
    process->signal(SIGHUP);
    ASSERT_EQ(3, ::write(descriptor, "abc", 3));
    close();
    EXPECT_EQ(0u, process->readLine().find("listening on "));
    process->signal(SIGTERM);
    EXPECT_EQ((Result{0, "", ""}), process->finish());
}

TEST(ServeArguments, ReportsAnAddressThatIsInUse) {
    test::ServerProcess server;
    const std::string address = "127.0.0.1:" + std::to_string(server.port());
    const Result result = runConnectorConfig({"serve", "--http", address});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.output);
    EXPECT_EQ(0u, result.errors.find("connector-config: Cannot listen on " + address + ": "));
}

} // namespace
