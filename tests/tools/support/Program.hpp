/// The program under test, and its input files.
#pragma once

#include "tools/support/Process.hpp"

#include <string>
#include <vector>

namespace test {

/// @return the command line of the program with these arguments
std::vector<std::string> connectorConfig(std::vector<std::string> arguments);

/// Runs the program until it exits.
Result runConnectorConfig(std::vector<std::string> arguments, const std::string& input = "",
                          const RunOptions& options = {});

/// Runs a shell command that finds the program in its PATH.
/// @return standard output and standard error, in the order of writing
std::string runInShell(const std::string& command);

/// @return what the program writes to standard error for invalid arguments
std::string usageError(const std::string& message);

/// A file that the destructor removes.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& content);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& path() const { return filePath; }
    /// @return an argument for --file that gives the source a fixed name
    std::string named(const std::string& name, const std::string& more = "") const {
        return "path=" + filePath + ",name=" + name + more;
    }

private:
    std::string filePath;
};

} // namespace test
