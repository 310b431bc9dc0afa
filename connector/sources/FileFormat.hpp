/// The files that a FileSource reads.
#pragma once

#include <cstdint>

namespace connector::sources {

/// How the text of a file is converted to options; docs/sources.md has the rules.
enum class FileFormat : std::uint8_t {
    ByExtension, ///< .properties, .json, .yaml or .yml, .toml; in lower or upper case
    Properties,  ///< as PropertyFileSource reads it
    Json,        ///< RFC 8259
    Yaml,        ///< YAML 1.2, core schema
    Toml,        ///< TOML 1.0
};

/// What the constructor of FileSource does when the file does not exist.
enum class IfMissing : std::uint8_t {
    Throw, ///< throws FileError
    Empty, ///< constructs a source without options; reload reads the file once it exists
};

} // namespace connector::sources
