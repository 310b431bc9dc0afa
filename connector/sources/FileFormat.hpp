/// The files that a FileSource reads.
#pragma once

#include <connector/sources/Export.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>

namespace connector::sources {

/// How the text of a file is converted to options; docs/sources.md has the rules.
enum class FileFormat : std::uint8_t {
    ByExtension, ///< .properties, .json, .yaml or .yml, .toml; in lower or upper case
    Properties,  ///< as PropertyFileSource reads it
    Json,        ///< RFC 8259
    Yaml,        ///< YAML 1.2, core schema
    Toml,        ///< TOML 1.0
};

/// Does not open the file.
/// @return the format that the extension of the path names; nothing if it names none
CONNECTOR_SOURCES_EXPORT std::optional<FileFormat>
formatByExtension(const std::filesystem::path& path);

/// What the constructor of FileSource does when the file does not exist.
enum class IfMissing : std::uint8_t {
    Throw, ///< throws FileError
    Empty, ///< constructs a source without options; reload reads the file once it exists
};

} // namespace connector::sources
