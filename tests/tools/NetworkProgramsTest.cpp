/// The programs that connector-config starts for commands that use the network.
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Process.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

class ACopyOfTheProgramAlone : public testing::Test {
protected:
    ACopyOfTheProgramAlone() { std::filesystem::copy_file(CONNECTOR_CONFIG_PROGRAM, program); }

    test::Result run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), program.string());
        return test::run(arguments);
    }

    /// @return what it says when it cannot start another program
    test::Result without(const std::string& other) const {
        const auto path = directory.path / NETWORK_PROGRAMS_FROM_BIN / other;
        return {1, "",
                "connector-config: Cannot run " + path.lexically_normal().string() +
                    ": No such file or directory\n"};
    }

    test::TemporaryDirectory directory;
    const std::filesystem::path program = directory.path / "bin-of-another-prefix";
};

TEST_F(ACopyOfTheProgramAlone, SaysWhichProgramAServiceNeeds) {
    const test::Result expected = without("connector-config-network");
    EXPECT_EQ(expected, run({"--url", "http://localhost:1", "keys"}));
    EXPECT_EQ(expected, run({"serve", "--http", "127.0.0.1:0"}));
    EXPECT_EQ(expected, run({"diff", "--url", "http://localhost:1", "file.json"}));
}

TEST_F(ACopyOfTheProgramAlone, SaysWhichProgramEtcdNeeds) {
    if (!HAS_ETCD)
        GTEST_SKIP() << "built without etcd";
    const std::string etcd = "endpoint=http://127.0.0.1:1,prefix=p";
    const test::Result expected = without("connector-config-etcd");
    EXPECT_EQ(expected, run({"--etcd", etcd, "keys"}));
    EXPECT_EQ(expected, run({"--etcd", etcd, "serve", "--http", "127.0.0.1:0"}));
    EXPECT_EQ(expected, run({"--etcd", etcd, "fleet", "export"}));
}

TEST_F(ACopyOfTheProgramAlone, NeedsNoOtherProgramForSources) {
    EXPECT_EQ((test::Result{0, "1\n", ""}), run({"--set", "k=1", "get", "k"}));
}

TEST_F(ACopyOfTheProgramAlone, ReportsWrongArgumentsItself) {
    EXPECT_EQ(2, run({"--url", "nonsense", "keys"}).status);
}

TEST(AServiceWithoutEtcd, DoesNotLoadItsLibraries) {
    test::ServerProcess server;
    std::ostringstream maps;
    maps
        << std::ifstream("/proc/" + std::to_string(server.process().processId()) + "/maps").rdbuf();
    EXPECT_NE(std::string::npos, maps.str().find("libssl"));
    EXPECT_EQ(std::string::npos, maps.str().find("libgrpc"));
    EXPECT_EQ(std::string::npos, maps.str().find("libconnector-etcd"));
}

} // namespace
