/// The exit status of the program.
#pragma once

namespace connector_config {

enum ExitStatus : int {
    Success = 0,
    Failure = 1,    ///< the library reported a failure, or standard output could not be written
    UsageError = 2, ///< the arguments are invalid
};

} // namespace connector_config
