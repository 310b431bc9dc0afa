/// The bytes of a file.
#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace connector::sources::detail {

/// Distinguishes states of a file, as far as the file system records them.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< nanoseconds since 1970
    std::int64_t changed = 0;  ///< nanoseconds since 1970, of content or attributes

    friend bool operator==(const FileStamp& left, const FileStamp& right) {
        return left.device == right.device && left.number == right.number &&
               left.size == right.size && left.modified == right.modified &&
               left.changed == right.changed;
    }
};

struct FileText {
    std::string bytes;
    FileStamp stamp; ///< taken before the file was read

    /// @return a number that is very unlikely to be that of another text
    std::size_t hash() const { return std::hash<std::string>()(bytes); }
};

/// @return nothing if there is no such file
std::optional<FileStamp> stampOf(const std::filesystem::path& path);

/// Reads a whole file.
/// @param largest  in bytes
/// @throws std::system_error if it cannot be opened or read; the code is the reason
/// @throws std::length_error if it is larger
FileText readFile(const std::filesystem::path& path, std::size_t largest);

} // namespace connector::sources::detail
