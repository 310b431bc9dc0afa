#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace test {

std::vector<std::string> connectorConfig(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), CONNECTOR_CONFIG_PROGRAM);
    return arguments;
}

Result runConnectorConfig(std::vector<std::string> arguments, const std::string& input,
                          const RunOptions& options) {
    return run(connectorConfig(std::move(arguments)), input, options);
}

std::string runInShell(const std::string& command) {
    const auto directory = std::filesystem::path(CONNECTOR_CONFIG_PROGRAM).parent_path();
    RunOptions options;
    options.environment = {"PATH=" + directory.string() + ":/usr/bin:/bin"};
    return run({"/bin/sh", "-c", "{ " + command + "\n} 2>&1"}, "", options).output;
}

std::string usageError(const std::string& message) {
    return "connector-config: " + message +
           "\n"
           "Usage: connector-config [OPTIONS] COMMAND [ARGUMENTS]\n"
           "Try connector-config --help\n";
}

TemporaryFile::TemporaryFile(const std::string& content)
    : filePath(testing::TempDir() + "connector-config-XXXXXX") {
    const int descriptor = mkstemp(filePath.data());
    if (descriptor < 0)
        throw std::runtime_error("No temporary file: " + filePath);
    ::close(descriptor);
    std::ofstream(filePath, std::ios::binary) << content;
}

TemporaryFile::~TemporaryFile() {
    std::remove(filePath.c_str());
}

} // namespace test
