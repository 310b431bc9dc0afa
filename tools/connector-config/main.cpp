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

/// Replaces this process by the program that can use the network.
[[noreturn]] void startNetworkProgram(char* const argv[]) {
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path program =
        (self.parent_path() / CONNECTOR_CONFIG_NETWORK).lexically_normal();
    ::execv(program.c_str(), argv);
    throw std::runtime_error("Cannot run " + program.string() + ": " +
                             std::generic_category().message(errno));
}

} // namespace

} // namespace connector_config

int main(int argc, char* argv[]) {
    return connector_config::runProgram(
        argc, argv, [argv](const connector_config::Arguments&) -> connector_config::ExitStatus {
            connector_config::startNetworkProgram(argv);
        });
}
