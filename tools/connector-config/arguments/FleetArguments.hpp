/// The arguments of fleet.
#pragma once

#include "arguments/Assignment.hpp"
#include "arguments/FileArgument.hpp"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace connector_config {

struct FleetArguments {
    enum class Action : std::uint8_t { Put, Delete, Import, Export, Status };
    enum class Format : std::uint8_t { Json, Properties };

    Action action{};
    std::vector<Assignment> assignments; ///< of put, with different keys
    std::set<std::string> keys;          ///< of delete
    FileArgument file;                   ///< of import; path and format alone are used
    bool deletes = false;                ///< of import: whether other keys are deleted
    bool isDryRun = false;               ///< of import: whether nothing is written
    Format format = Format::Json;        ///< of export
};

} // namespace connector_config
