/// What files a FileSource reads.
#pragma once

#include <cstdint>

namespace connector::sources {

/// How the text of a file becomes options; docs/sources.md has the rules.
enum class FileFormat : std::uint8_t {
    ByExtension, ///< .properties, .json, .yaml or .yml, .toml; in lower or upper case
    Properties,  ///< as PropertyFileSource reads it
    Json,        ///< RFC 8259
    Yaml,        ///< YAML 1.2, core schema
    Toml,        ///< TOML 1.0
};

/// What the construction of a FileSource does when there is no file.
enum class IfMissing : std::uint8_t {
    Throw, ///< throws FileError
    Empty, ///< makes a source without options, which reload fills when the file is there
};

} // namespace connector::sources
