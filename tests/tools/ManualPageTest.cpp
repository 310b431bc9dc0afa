/// Runs the examples in docs/connector-config.md in the root of the checkout.
#include "tools/support/ConsoleExamples.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using test::Example;

TEST(ManualPage, ExamplesPrintWhatThePageShows) {
    std::filesystem::current_path(PROJECT_ROOT);
    const test::ConsoleExamples page("docs/connector-config.md");
    EXPECT_GE(page.examples.size(), 12u);
    for (const Example& example : page.examples) {
        SCOPED_TRACE("docs/connector-config.md:" + std::to_string(example.line));
        EXPECT_EQ(example.output, test::runInShell(example.command)) << example.command;
    }
}

} // namespace
