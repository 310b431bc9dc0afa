/// The program under test, and files for it.
#pragma once

#include "tools/support/Process.hpp"

#include <string>
#include <vector>

namespace test {

/// @return the program with these arguments, to be run
std::vector<std::string> connectorConfig(std::vector<std::string> arguments);

/// Runs the program to its end.
Result runConnectorConfig(std::vector<std::string> arguments, const std::string& input = "",
                          const Surroundings& surroundings = {});

/// What standard error holds when the arguments are wrong.
std::string wrongUse(const std::string& message);

/// A file that goes with the object.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& content);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& path() const { return filePath; }
    /// @return the file for --file, under a name that is the same in every run
    std::string named(const std::string& name, const std::string& more = "") const {
        return "path=" + filePath + ",name=" + name + more;
    }

private:
    std::string filePath;
};

} // namespace test
