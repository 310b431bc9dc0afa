// The operators stand in a file of their own: where the compiler sees through them, it takes the
// pair of operator new and std::free for a mistake.
#include "support/AllocationCount.hpp"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#include <malloc.h>

namespace {

thread_local std::size_t count = 0;
thread_local std::size_t failingNumber = 0;
thread_local std::ptrdiff_t bytes = 0;
thread_local std::ptrdiff_t peak = 0;

/// @return what an allocation takes, with the word that the allocator puts before it
std::ptrdiff_t sizeOf(void* memory) {
    return static_cast<std::ptrdiff_t>(malloc_usable_size(memory) + sizeof(std::size_t));
}

void* counted(void* memory) {
    if (memory == nullptr)
        throw std::bad_alloc();
    bytes += sizeOf(memory);
    peak = std::max(peak, bytes);
    return memory;
}

void release(void* memory) {
    if (memory == nullptr)
        return;
    bytes -= sizeOf(memory);
    std::free(memory);
}

void countAllocation() {
    if (++count == failingNumber)
        throw std::bad_alloc();
}

void* allocate(std::size_t size) {
    countAllocation();
    return counted(std::malloc(size != 0 ? size : 1));
}

void* allocate(std::size_t size, std::align_val_t alignment) {
    countAllocation();
    const auto unit = static_cast<std::size_t>(alignment);
    const std::size_t units = size / unit + (size % unit != 0 || size == 0 ? 1 : 0);
    return counted(std::aligned_alloc(unit, units * unit));
}

template <typename Allocate>
void* nullInsteadOfBadAlloc(Allocate action) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace

std::size_t test::allocationCount() {
    return count;
}

std::ptrdiff_t test::allocatedBytes() {
    return bytes;
}

std::ptrdiff_t test::takePeakOfAllocatedBytes() {
    return std::exchange(peak, bytes);
}

void test::failAllocation(std::size_t number) {
    failingNumber = number;
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return allocate(size, alignment);
}
// The sanitizers' own operators for std::nothrow do not call those above.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return nullInsteadOfBadAlloc([&] { return allocate(size); });
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return nullInsteadOfBadAlloc([&] { return allocate(size); });
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return nullInsteadOfBadAlloc([&] { return allocate(size, alignment); });
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return nullInsteadOfBadAlloc([&] { return allocate(size, alignment); });
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    release(memory);
}
// Called when the constructor of an object throws that is created with std::nothrow.
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
    release(memory);
}
