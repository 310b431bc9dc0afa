/// How the program ends.
#pragma once

namespace connector_config {

enum ExitStatus : int {
    Success = 0,
    Failure = 1,  ///< the library refused, or standard output could not be written
    WrongUse = 2, ///< the arguments make no sense
};

} // namespace connector_config
