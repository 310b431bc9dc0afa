/// Counts the calls of operator new, and makes one of them fail. A program that links
/// AllocationCount.cpp has operator new replaced.
#pragma once

#include <cstddef>

namespace test {

/// @return how often this thread has called operator new; calls that failed count, too
std::size_t allocationCount();

/// Makes one allocation of this thread throw std::bad_alloc; those before and after it succeed.
/// @param number  the value that allocationCount has after that allocation; 0: none fails
void failAllocation(std::size_t number);

} // namespace test
