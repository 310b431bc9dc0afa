#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <unistd.h>

namespace test {

std::vector<std::string> connectorConfig(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), CONNECTOR_CONFIG_PROGRAM);
    return arguments;
}

Result runConnectorConfig(std::vector<std::string> arguments, const std::string& input,
                          const Surroundings& surroundings) {
    return run(connectorConfig(std::move(arguments)), input, surroundings);
}

std::string wrongUse(const std::string& message) {
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
