/// JSON, YAML and TOML files.
#pragma once

#include "checking/CheckedFile.hpp"
#include "checking/SchemaCheck.hpp"

#include <optional>
#include <string>

namespace connector_config {

/// The options of a file, or why it cannot be parsed.
struct Document {
    SchemaCheck::Table table;
    std::optional<FileFinding> syntaxError;
};

/// @return whether the extension names one of the three formats
bool isDocument(const std::string& name);

/// @param path  of a file that isDocument
/// @throws std::runtime_error if the file cannot be read
Document readDocument(const std::string& path);

} // namespace connector_config
