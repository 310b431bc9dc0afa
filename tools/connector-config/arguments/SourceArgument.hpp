/// A source of the command line.
#pragma once

#include "arguments/Assignment.hpp"
#include "arguments/EnvironmentArgument.hpp"
#include "arguments/EtcdArgument.hpp"
#include "arguments/FileArgument.hpp"

#include <variant>

namespace connector_config {

/// A value for one of the two built-in tables.
struct TableAssignment {
    Assignment assignment;
    const char* table; ///< "override" or "default"
};

using SourceArgument =
    std::variant<FileArgument, EnvironmentArgument, EtcdArgument, TableAssignment>;

} // namespace connector_config
