/// Reads files, and replaces them without a moment at which they are incomplete.
#pragma once

#include <string>

namespace connector_config {

/// @param name  a path, or "-" for standard input
/// @return the content
/// @throws std::system_error "File could not be read: NAME: REASON"
std::string readFile(const std::string& name);

/// Writes a file beside the path, syncs it and renames it over the path. If the path is a symbolic
/// link, the file behind it is replaced. Mode and owner stay.
/// @param previous  what the file has now; a file that has become another one is not replaced
/// @throws std::system_error "File could not be written: PATH: REASON"
/// @throws std::runtime_error "File could not be written: PATH: ..." if it is no regular file, or
///         was changed in the meantime. The file is then as it was.
void replaceFile(const std::string& path, const std::string& previous, const std::string& content);

} // namespace connector_config
