/// check
#pragma once

#include "arguments/CheckArguments.hpp"

#include <connector/service/text/Secrets.hpp>

#include <cstdint>

namespace connector_config {

enum class CheckResult : std::uint8_t {
    Clean,    ///< no finding
    Findings, ///< one or more
    Failed,   ///< a file could not be read or written, or the schema could not be used
};

/// Checks files and writes the findings, or what a fix would change, to standard output. Rewrites
/// the files first if the arguments say so. Reports files that cannot be read or written on
/// standard error, and goes on with the next.
/// @throws OutputError
CheckResult check(const CheckArguments& arguments, const connector::service::Secrets& secrets);

} // namespace connector_config
