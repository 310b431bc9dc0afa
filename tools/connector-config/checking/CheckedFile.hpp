/// The findings in one file.
#pragma once

#include "arguments/CheckArguments.hpp"
#include "checking/SchemaCheck.hpp"

#include <connector/service/text/Secrets.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace connector_config {

/// What is wrong at one place of a file.
struct FileFinding {
    std::size_t line;   ///< from 1
    std::size_t column; ///< in bytes, from 1
    std::string rule;
    std::string text;
};

struct CheckedFile {
    std::string name; ///< as on the command line
    std::string text; ///< the content
    std::vector<FileFinding> findings;
    std::string error; ///< why the file could not be read or written; empty if it could
};

/// Whether the file is a property file. JSON, YAML and TOML files are recognised by their
/// extensions, all others are property files.
bool isPropertyFile(const std::string& name);

/// Fills the findings, in the order of their places.
/// @param file  its name and text are set
/// @param schema  null if there is none
void findIn(CheckedFile& file, const SchemaCheck* schema,
            const connector::service::Secrets& secrets, const std::set<std::string>& disabledRules);

} // namespace connector_config
