/// The heap memory of a loaded property file, counted in blocks as the C library allocates them:
/// the bytes per entry after loading, and the peak during loading. This is a separate program,
/// because counting costs time.
#include "LoadCase.hpp"
#include "Tables.hpp"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::int64_t> bytesInUse{0};
std::atomic<std::int64_t> highest{0};

/// The size of a block: its usable bytes and the length field before them.
std::int64_t bytesOf(void* block) {
    return static_cast<std::int64_t>(malloc_usable_size(block) + sizeof(std::size_t));
}

void* allocate(std::size_t size) {
    void* const block = std::malloc(size);
    if (block == nullptr)
        throw std::bad_alloc();
    const std::int64_t now = bytesInUse += bytesOf(block);
    highest = std::max<std::int64_t>(highest, now);
    return block;
}

void release(void* block) {
    if (block != nullptr)
        bytesInUse -= bytesOf(block);
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}

namespace {

enum class Moment { kept, peak };

template <typename Loaded>
void measure(benchmark::State& state, int entries, Moment moment) {
    const Loaded warm(entries); // what is allocated only once is not counted
    for (auto _ : state) {
        const std::int64_t before = bytesInUse;
        highest = before;
        Loaded loaded(entries);
        const std::int64_t after = moment == Moment::kept ? bytesInUse : highest;
        state.counters["bytes"] = static_cast<double>(after - before) / entries;
        if (!bench::isRight(loaded, entries, bench::Care::threeEntries)) {
            state.SkipWithError("not what the file says");
            break;
        }
    }
}

template <typename Loaded>
bool addMemory(const std::string& contestant) {
    for (const int entries : bench::loadSizes) {
        const auto add = [&](const char* description, Moment moment) {
            bench::add("load memory", std::to_string(entries) + " entries, " + description,
                       contestant,
                       [=](benchmark::State& state) { measure<Loaded>(state, entries, moment); });
        };
        add("kept", Moment::kept);
        add("peak", Moment::peak);
    }
    return true;
}

[[maybe_unused]] const bool registered = addMemory<bench::Ours>("ours") &&
                                         addMemory<bench::Floor>("floor") &&
                                         addMemory<bench::Literal>("literal");

} // namespace
