/// The examples on the page on messages, run in their order. What stands there as the server's address
/// is that of a server that was started as the page says.
#include "service/support/ServerProcess.hpp"
#include "tools/support/Manual.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using test::Example;
using test::ServerProcess;

const char addressOnThePage[] = "127.0.0.1:8080";

std::string withAddress(std::string text, const std::string& address) {
    for (std::size_t at; (at = text.find(addressOnThePage)) != text.npos;)
        text.replace(at, sizeof addressOnThePage - 1, address);
    return text;
}

TEST(MessagesDocument, ItsExamplesSayWhatThePageShows) {
    const test::Manual page(MESSAGES_DOCUMENT);
    ASSERT_GE(page.examples.size(), 8u);
    const auto root = std::filesystem::path(MESSAGES_DOCUMENT).parent_path().parent_path();
    std::filesystem::current_path(root);
    const ServerProcess server({"--writable", "net.", "--property-root", "examples/properties"},
                               {"-s", "net.port:int=80", "-s", "db.password=x"});
    const std::string address = "127.0.0.1:" + std::to_string(server.port());
    test::Surroundings withProgram;
    withProgram.environment = {
        "PATH=" + std::filesystem::path(CONNECTOR_CONFIG_PROGRAM).parent_path().string() +
        ":/usr/bin:/bin"};
    for (const Example& example : page.examples) {
        SCOPED_TRACE("docs/messages.md:" + std::to_string(example.line));
        const std::string command = withAddress(example.command, address);
        EXPECT_EQ(example.output,
                  test::run({"/bin/sh", "-c", "{ " + command + "\n} 2>&1"}, "", withProgram).output)
            << command;
    }
}

} // namespace
