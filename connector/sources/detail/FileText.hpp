/// The bytes of a file.
#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace connector::sources::detail {

/// What tells one state of a file from another, as far as the file system knows.
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
    FileStamp stamp; ///< of before it was read

    /// @return a number that hardly ever is that of another text
    std::size_t hash() const { return std::hash<std::string>()(bytes); }
};

/// @return nothing when there is no such file
std::optional<FileStamp> stampOf(const std::filesystem::path& path);

/// Reads a file at once.
/// @param largest  in bytes
/// @throws std::system_error when it cannot be opened or read; the code says why
/// @throws std::length_error when it is larger
FileText readFile(const std::filesystem::path& path, std::size_t largest);

} // namespace connector::sources::detail
