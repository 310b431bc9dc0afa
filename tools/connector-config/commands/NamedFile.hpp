/// A file that the user named.
#pragma once

#include "arguments/FileArgument.hpp"

#include <connector/sources/FileSource.hpp>

#include <memory>
#include <vector>

namespace connector_config {

/// A file, and the source that it becomes.
class NamedFile : public connector::sources::FileSource {
public:
    /// Use openFile instead, which keeps secrets out of diagnostic lines.
    explicit NamedFile(const FileArgument& newArgument);

    const FileArgument& argument() const { return file; }

    /// @return whether the file can be read again: a pipe would block and a device never ends
    bool canBeReloaded() const;

    /// As FileSource does, but an optional file that is missing and has no options is no failure.
    /// Diagnostic lines mask the secrets of the group.
    connector::sources::TableChange reload() override;

private:
    bool isStillMissing() const;

    const FileArgument file;
};

using NamedFiles = std::vector<std::shared_ptr<NamedFile>>;

/// Reads a file.
/// @throws std::runtime_error "Path is not valid UTF-8: PATH"
/// @throws std::runtime_error "Property file could not be opened: PATH"
/// @throws connector::sources::FileError for a file of another format
std::shared_ptr<NamedFile> openFile(const FileArgument& argument);

} // namespace connector_config
