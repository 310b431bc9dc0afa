/// The examples of the manual page, run in the root of the checkout.
#include "tools/support/Manual.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using test::Example;
using test::Manual;

TEST(Manual, EveryExampleSaysWhatThePageShows) {
    std::filesystem::current_path(PROJECT_ROOT);
    test::Surroundings withProgram;
    withProgram.environment = {
        "PATH=" + std::filesystem::path(CONNECTOR_CONFIG_PROGRAM).parent_path().string() +
        ":/usr/bin:/bin"};
    const Manual manual("docs/connector-config.md");
    EXPECT_GE(manual.examples.size(), 12u);
    for (const Example& example : manual.examples) {
        SCOPED_TRACE("docs/connector-config.md:" + std::to_string(example.line));
        const test::Result result =
            test::run({"/bin/sh", "-c", "{ " + example.command + "\n} 2>&1"}, "", withProgram);
        EXPECT_EQ(example.output, result.output) << example.command;
    }
}

} // namespace
