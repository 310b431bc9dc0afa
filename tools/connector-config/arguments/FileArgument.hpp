/// A property file, as the user names it.
#pragma once

#include <cstdint>
#include <string>

namespace connector_config {

struct FileArgument {
    std::string path;
    std::string name; ///< of the source
    std::string group;
    std::int32_t order = 100;
};

/// Reads a plain path, or "path=P[,name=N][,group=G][,order=O]": whatever begins with "path=" is the
/// long form. Its members behind the path stand in any order, each at most once; each ends at the
/// next comma. The path is the name where none is given.
/// @throws WrongArguments
FileArgument parseFileArgument(const std::string& text);

} // namespace connector_config
