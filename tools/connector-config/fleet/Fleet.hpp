/// The commands of fleet.
#pragma once

#include "ExitStatus.hpp"
#include "arguments/Arguments.hpp"

namespace connector_config {

/// Reads or writes the keys below the prefix of the one source that the arguments have.
/// @throws WrongArguments for keys and values that etcd cannot hold
/// @throws std::runtime_error with endpoint and cause
/// @throws OutputError
ExitStatus runFleet(const Arguments& arguments);

} // namespace connector_config
