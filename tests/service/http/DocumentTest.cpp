/// Runs the examples in docs/messages.md in their order, against a server started with the
/// arguments on that page. The address on the page is replaced by the server's.
#include "service/support/ServerProcess.hpp"
#include "tools/support/ConsoleExamples.hpp"
#include "tools/support/Program.hpp"

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

TEST(MessagesDocument, ExamplesPrintWhatThePageShows) {
    const test::ConsoleExamples page(MESSAGES_DOCUMENT);
    ASSERT_GE(page.examples.size(), 8u);
    const auto root = std::filesystem::path(MESSAGES_DOCUMENT).parent_path().parent_path();
    std::filesystem::current_path(root);
    const ServerProcess server({"--writable", "net.", "--property-root", "examples/properties"},
                               {"-s", "net.port:int=80", "-s", "db.password=x"});
    const std::string address = "127.0.0.1:" + std::to_string(server.port());
    for (const Example& example : page.examples) {
        SCOPED_TRACE("docs/messages.md:" + std::to_string(example.line));
        const std::string command = withAddress(example.command, address);
        EXPECT_EQ(example.output, test::runInShell(command)) << command;
    }
}

} // namespace
