/// The program that connector-config starts for commands that use the network.
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Process.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class ACopyOfTheProgramAlone : public testing::Test {
protected:
    ACopyOfTheProgramAlone() { std::filesystem::copy_file(CONNECTOR_CONFIG_PROGRAM, program); }

    test::TemporaryDirectory directory;
    const std::filesystem::path program = directory.path / "bin-of-another-prefix";
};

TEST_F(ACopyOfTheProgramAlone, SaysWhichProgramTheNetworkNeeds) {
    const test::Result result =
        test::run({program.string(), "--url", "http://localhost:1", "keys"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.output);
    const auto expected = (directory.path / NETWORK_PROGRAM_FROM_BIN).lexically_normal().string();
    EXPECT_EQ("connector-config: Cannot run " + expected + ": No such file or directory\n",
              result.errors);
}

TEST_F(ACopyOfTheProgramAlone, NeedsNoOtherProgramForSources) {
    const test::Result result = test::run({program.string(), "--set", "k=1", "get", "k"});
    EXPECT_EQ("1\n", result.output);
    EXPECT_EQ(0, result.status);
}

TEST_F(ACopyOfTheProgramAlone, ReportsWrongArgumentsItself) {
    EXPECT_EQ(2, test::run({program.string(), "--url", "nonsense", "keys"}).status);
}

} // namespace
