/// Failures to write standard output.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Process;
using test::Result;
using test::runConnectorConfig;
using test::RunOptions;

constexpr const char* noSpace =
    "connector-config: Standard output could not be written: No space left on device\n";

TEST(Output, ReportsAFullDevice) {
    RunOptions full;
    full.outputFile = "/dev/full";
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"-s", "k=1", "get", "k"},
                                               {"-s", "k=1", "keys"},
                                               {"-s", "k=1", "show"},
                                               {"explain", "k"},
                                               {"-s", "k=1", "watch", "k"},
                                               {"--help"},
                                               {"--version"}}) {
        SCOPED_TRACE(arguments.back());
        EXPECT_EQ((Result{1, "", noSpace}), runConnectorConfig(arguments, "", full));
    }
}

TEST(Output, ReportsThatItIsClosed) {
    EXPECT_EQ((Result{1, "",
                      "connector-config: Standard output could not be written: "
                      "Bad file descriptor\n"}),
              test::run({"/bin/sh", "-c", "\"$0\" -s k=1 get k >&-", CONNECTOR_CONFIG_PROGRAM}));
}

TEST(Output, FailsSilentlyIfTheReaderHasClosedThePipe) {
    Process process(test::connectorConfig({"watch", "k"}));
    EXPECT_EQ("connector-config: No value yet: k", process.readErrorLine());
    process.closeOutput();
    process.write("set k=1\n");
    EXPECT_EQ((Result{1, "", ""}), process.finish());
}

TEST(Output, OfManyOptionsIsComplete) {
    std::string content;
    std::string expected;
    for (int i = 100000; i < 120000; ++i) {
        content += "key." + std::to_string(i) + "=v\n";
        expected += "key." + std::to_string(i) + "\n";
    }
    const test::TemporaryFile file(content);
    EXPECT_EQ((Result{0, expected, ""}), runConnectorConfig({"-f", file.path(), "keys"}));
    RunOptions nonBlocking;
    nonBlocking.nonBlocking = true;
    EXPECT_EQ((Result{0, expected, ""}),
              runConnectorConfig({"-f", file.path(), "keys"}, "", nonBlocking));
}

} // namespace
