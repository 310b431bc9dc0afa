/// What the tests of reloaded files share.
#pragma once

#include "support/TemporaryDirectory.hpp"
#include "tools/support/Process.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace test {

/// @return the directory with the open descriptors of a process
inline std::filesystem::path descriptorsOf(const Process& process) {
    return "/proc/" + std::to_string(process.processId()) + "/fd";
}

/// @return how many sets of files a process watches
inline std::ptrdiff_t watchers(const Process& process) {
    const auto isWatcher = [](const std::filesystem::directory_entry& entry) {
        std::error_code error; // of a descriptor that was closed in the meantime
        const std::string file = std::filesystem::read_symlink(entry.path(), error).string();
        return file.find("inotify") != std::string::npos;
    };
    return std::count_if(std::filesystem::directory_iterator(descriptorsOf(process)),
                         std::filesystem::directory_iterator(), isWatcher);
}

/// @return the number that the next descriptor of a process gets
inline std::size_t nextDescriptor(const Process& process) {
    std::size_t number = 0;
    while (std::filesystem::is_symlink(descriptorsOf(process) / std::to_string(number)))
        ++number;
    return number;
}

class ReloadedFiles : public testing::Test {
protected:
    std::string pathOf(const std::string& name) const { return (directory.path / name).string(); }

    /// Replaces a file as a whole, or creates it.
    /// @return an argument for --file that gives the source the name of the file
    std::string write(const std::string& name, const std::string& content) const {
        std::filesystem::rename(directory.write(name + ".new", content), directory.path / name);
        return "path=" + pathOf(name) + ",name=" + name;
    }

    const TemporaryDirectory directory;
};

} // namespace test
