/// Counts the calls of operator new and their memory, and makes one of them fail. A program that
/// links AllocationCount.cpp has operator new replaced.
#pragma once

#include <cstddef>

namespace test {

/// @return how often this thread has called operator new; calls that failed count, too
std::size_t allocationCount();

/// @return the bytes that the allocator has handed out to this thread and not got back from it
std::ptrdiff_t allocatedBytes();

/// @return the largest allocatedBytes since the last call of this function in this thread
std::ptrdiff_t takePeakOfAllocatedBytes();

/// Makes one allocation of this thread throw std::bad_alloc; those before and after it succeed.
/// @param number  the value that allocationCount has after that allocation; 0: none fails
void failAllocation(std::size_t number);

} // namespace test
