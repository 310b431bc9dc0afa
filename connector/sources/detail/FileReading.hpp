/// Reads a file and converts it to options.
#pragma once

#include <connector/sources/TableChange.hpp>
#include <connector/sources/detail/FileState.hpp>
#include <connector/sources/detail/FileText.hpp>

#include <filesystem>

namespace connector::sources::detail {

struct FileOptions {
    Table options;
    FileState::Origin origin;
};

/// @throws FileError when the file cannot be opened or read, or is too large for its format
FileText readText(const FileState& state);

/// @throws FileError
FileOptions readOptions(const FileState& state);

/// @return whether the path exists, readable or not
bool exists(const std::filesystem::path& path);

} // namespace connector::sources::detail
