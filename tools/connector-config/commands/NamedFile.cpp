#include "commands/NamedFile.hpp"

#include <connector/service/text/LoadingGroup.hpp>
#include <connector/service/text/Utf8.hpp>

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace connector_config {

using connector::service::LoadingGroup;
using connector::sources::FileError;
using connector::sources::FileFormat;
using connector::sources::FileSource;
using connector::sources::IfMissing;
using connector::sources::TableChange;

NamedFile::NamedFile(const FileArgument& newArgument)
    : FileSource(newArgument.path, newArgument.format,
                 newArgument.optional ? IfMissing::Empty : IfMissing::Throw),
      file(newArgument) {
}

bool NamedFile::canBeReloaded() const {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path(), error);
    return std::filesystem::is_regular_file(status) || !std::filesystem::exists(status);
}

bool NamedFile::isStillMissing() const {
    std::error_code error;
    return file.optional && table()->empty() &&
           std::filesystem::status(path(), error).type() == std::filesystem::file_type::not_found;
}

TableChange NamedFile::reload() {
    if (isStillMissing())
        return {};
    const LoadingGroup loading(file.group);
    return FileSource::reload();
}

std::shared_ptr<NamedFile> openFile(const FileArgument& argument) {
    if (!connector::service::isUtf8(argument.path))
        throw std::runtime_error("Path is not valid UTF-8: " + argument.path);
    const LoadingGroup loading(argument.group);
    try {
        return std::make_shared<NamedFile>(argument);
    } catch (const FileError&) {
        if (argument.format != FileFormat::Properties)
            throw;
        // Any text is a property file, so the file could not be read. This is the library's text.
        throw std::runtime_error("Property file could not be opened: " + argument.path);
    }
}

} // namespace connector_config
