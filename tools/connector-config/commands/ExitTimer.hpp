/// Ends a process whose shutdown takes too long.
#pragma once

#include <chrono>

namespace connector_config {

/// Ends the process with status 0 after a time, whatever it does then. A function that is running
/// cannot be interrupted otherwise: a file whose keys all have the same hash value takes minutes to
/// load, for example. Replaces the handler of SIGALRM.
/// @param delay  more than 0
void exitAfter(std::chrono::milliseconds delay);

} // namespace connector_config
