#include "checking/Documents.hpp"

#include "arguments/CheckRules.hpp"

#include <connector/sources/FileFormat.hpp>
#include <connector/sources/FileSource.hpp>

#include <algorithm>

namespace connector_config {

using connector::sources::FileError;
using connector::sources::FileSource;

namespace {

/// @return the text of the error without the path and the place in front of it
std::string textOf(const FileError& error, const std::string& path) {
    const std::string place =
        ':' + std::to_string(error.line()) + ':' + std::to_string(error.column()) + ": ";
    const std::string text = error.what();
    for (const std::string& prefix : {path + place, path + ": "}) {
        if (text.compare(0, prefix.size(), prefix) == 0)
            return text.substr(prefix.size());
    }
    return text;
}

} // namespace

bool isDocument(const std::string& name) {
    const auto format = connector::sources::formatByExtension(name);
    return format && *format != connector::sources::FileFormat::Properties;
}

Document readDocument(const std::string& path) {
    Document document;
    try {
        const FileSource source(path);
        for (const auto& [key, value] : *source.table())
            document.table.emplace(key, value);
    } catch (const FileError& error) {
        document.syntaxError = {std::max<std::size_t>(error.line(), 1),
                                std::max<std::size_t>(error.column(), 1), std::string(syntaxRule),
                                textOf(error, path)};
    }
    return document;
}

} // namespace connector_config
