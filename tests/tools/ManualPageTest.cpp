/// Runs the examples of docs/connector-config.md in the root of the checkout, and those of
/// docs/checking-files.md and docs/comparing.md, which write files, in empty directories.
#include "support/TemporaryDirectory.hpp"
#include "tools/support/ConsoleExamples.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using test::Example;

void expectExamples(const std::string& document, std::size_t fewest) {
    const test::ConsoleExamples page(PROJECT_ROOT "/" + document);
    EXPECT_GE(page.examples.size(), fewest);
    for (const Example& example : page.examples) {
        SCOPED_TRACE(document + ":" + std::to_string(example.line));
        EXPECT_EQ(example.output, test::runInShell(example.command)) << example.command;
    }
}

TEST(ManualPage, ExamplesPrintWhatThePageShows) {
    std::filesystem::current_path(PROJECT_ROOT);
    expectExamples("docs/connector-config.md", 12);
}

void expectExamplesInAnEmptyDirectory(const std::string& document, std::size_t fewest) {
    const test::TemporaryDirectory directory;
    std::filesystem::current_path(directory.path);
    expectExamples(document, fewest);
    std::filesystem::current_path(PROJECT_ROOT);
}

TEST(ManualPage, ExamplesOfCheckingPrintWhatThePageShows) {
    expectExamplesInAnEmptyDirectory("docs/checking-files.md", 8);
}

TEST(ManualPage, ExamplesOfComparingPrintWhatThePageShows) {
    expectExamplesInAnEmptyDirectory("docs/comparing.md", 18);
}

} // namespace
