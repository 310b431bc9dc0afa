/// The slot of an operation in the virtual table of its class.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace test {

#if defined(__x86_64__) && defined(__GXX_ABI_VERSION)
#define TEST_SLOTS_ARE_KNOWN

/// By the C++ ABI of this platform, a pointer to a virtual function begins with 1 + its offset in
/// the table. The two destructors take the first slots.
template <typename Operation>
std::size_t slotOf(Operation operation) {
    std::uintptr_t offsetPlusOne = 0;
    std::memcpy(&offsetPlusOne, &operation, sizeof(offsetPlusOne));
    return (offsetPlusOne - 1) / sizeof(void*);
}
#endif

} // namespace test
