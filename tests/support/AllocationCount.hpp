/// Counts what operator new is asked for. Whoever links AllocationCount.cpp has it replaced.
#pragma once

#include <cstddef>

namespace test {

/// @return how often this thread has called operator new
std::size_t allocationCount();

} // namespace test
