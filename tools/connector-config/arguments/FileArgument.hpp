/// Parses the FILE of --file, of the add line and of fleet import.
#pragma once

#include <connector/sources/FileFormat.hpp>

#include <cstdint>
#include <string>

namespace connector_config {

struct FileArgument {
    std::string path;
    std::string name; ///< name of the source
    std::string group;
    std::int32_t order = 100;
    /// never ByExtension
    connector::sources::FileFormat format = connector::sources::FileFormat::Properties;
    bool optional = false; ///< whether the file may be missing
};

/// Accepts a plain path or, if the text begins with "path=", the long form
///     path=P[,name=N][,group=G][,order=O][,format=F][,optional=true]
/// The members after the path may come in any order, each at most once. Each value ends at the next
/// comma. The default name is the path. The default format is the one that the extension names, and
/// that of property files for any other extension.
/// @throws WrongArguments
FileArgument parseFileArgument(const std::string& text);

/// The same for a file that becomes no source: the long form is
///     path=P[,format=F]
/// @throws WrongArguments
FileArgument parseImportedFile(const std::string& text);

} // namespace connector_config
