/// connector-config: shows the values of options and where they come from. See
/// docs/connector-config.md.
#include "Program.hpp"

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace connector_config {

namespace {

/// Replaces this process by a program that can use the network.
[[noreturn]] void startNetworkProgram(const char* name, char* const argv[]) {
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path program =
        (self.parent_path() / NETWORK_PROGRAMS_FROM_BIN / name).lexically_normal();
    ::execv(program.c_str(), argv);
    throw std::runtime_error("Cannot run " + program.string() + ": " +
                             std::generic_category().message(errno));
}

} // namespace

} // namespace connector_config

int main(int argc, char* argv[]) {
    using namespace connector_config;
    return runProgram(argc, argv, [argv](const Arguments& arguments) -> ExitStatus {
        startNetworkProgram(
            needsEtcd(arguments) ? "connector-config-etcd" : "connector-config-network", argv);
    });
}
