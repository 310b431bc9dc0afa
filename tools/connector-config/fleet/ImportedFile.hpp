/// Reads the file of fleet import.
#pragma once

#include "arguments/FileArgument.hpp"
#include "fleet/ExportDocument.hpp"

namespace connector_config {

/// Reads a file of any format, or the document of fleet export.
/// @throws std::system_error, std::runtime_error  the file cannot be read, or has keys or texts
///         that etcd cannot hold
OptionTable readImportedFile(const FileArgument& file);

} // namespace connector_config
