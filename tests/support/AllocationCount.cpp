// The operators stand in a file of their own: where the compiler sees through them, it takes the
// pair of operator new and std::free for a mistake.
#include "support/AllocationCount.hpp"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t count = 0;

void* allocate(std::size_t size) {
    ++count;
    if (void* const memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

} // namespace

std::size_t test::allocationCount() {
    return count;
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
