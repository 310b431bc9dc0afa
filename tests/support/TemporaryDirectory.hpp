/// A directory for the files of one test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace test {

/// Creates an empty directory; the destructor removes it with its content.
class TemporaryDirectory {
public:
    TemporaryDirectory() : path(make()) {}
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// Writes a file, byte for byte.
    std::filesystem::path write(const std::filesystem::path& name,
                                const std::string& content) const {
        std::ofstream stream(path / name, std::ios_base::binary);
        stream << content;
        if (!stream.flush())
            throw std::runtime_error("cannot write " + (path / name).string());
        return path / name;
    }

    const std::filesystem::path path;

private:
    static std::filesystem::path make() {
        std::string name = (std::filesystem::temp_directory_path() / "sources-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("cannot create a directory like " + name);
        return name;
    }
};

} // namespace test
