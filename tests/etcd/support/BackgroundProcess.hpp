/// Programs that tests start.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace test {

/// A running program. It is killed with this object, and when the test ends.
class BackgroundProcess {
public:
    /// @param log  gets what the program writes
    BackgroundProcess(const std::vector<std::string>& command, const std::filesystem::path& log);
    ~BackgroundProcess();
    BackgroundProcess(const BackgroundProcess&) = delete;
    BackgroundProcess& operator=(const BackgroundProcess&) = delete;

    void signal(int number) const;

    /// Kills it, and waits for its end.
    void kill();

private:
    pid_t id;
};

/// Runs a program to its end.
/// @return what it wrote
/// @throws std::runtime_error with that text when its status is not 0
std::string runProgram(const std::string& command);

} // namespace test
