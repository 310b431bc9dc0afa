/// Registers contestants that load a property file.
#pragma once

#include "../Harness.hpp"
#include "PropertyFile.hpp"

#include <time.h>

#include <cstddef>
#include <memory>
#include <string>

namespace bench {

constexpr int loadSizes[] = {1000, 10000, 100000, 1000000};

/// How much of a result is checked: everything once per run, because that takes as long as loading.
enum class Care { everyEntry, threeEntries };

template <typename Loaded>
bool isRight(Loaded& loaded, int entries, Care care) {
    const auto holds = [&loaded](int number) {
        return loaded.valueOf(PropertyFile::key(number)) == PropertyFile::value(number);
    };
    if (care == Care::threeEntries)
        return holds(0) && holds(entries / 2) && holds(entries - 1);
    for (int number = 0; number < entries; ++number)
        if (!holds(number))
            return false;
    return loaded.size() == static_cast<std::size_t>(entries);
}

/// @return the processor time of this thread, which other processes do not affect. Nothing here
/// waits.
inline double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <typename Work>
double seconds(Work work) {
    const double start = threadSeconds();
    work();
    return threadSeconds() - start;
}

/// Which part is timed.
enum class Timed { loading, teardown };

/// Loads the file and destroys the table, again and again, and times one of the two.
template <typename Loaded>
void runLoading(benchmark::State& state, int entries, Timed timed) {
    Care care = Care::everyEntry;
    for (auto _ : state) {
        std::unique_ptr<Loaded> loaded;
        const double loading = seconds([&] { loaded = std::make_unique<Loaded>(entries); });
        if (!isRight(*loaded, entries, care)) {
            state.SkipWithError("not what the file says");
            break;
        }
        care = Care::threeEntries;
        const double teardown = seconds([&] { loaded.reset(); });
        state.SetIterationTime(timed == Timed::loading ? loading : teardown);
    }
    state.SetItemsProcessed(state.iterations() * entries);
}

/// Registers a contestant for every size.
/// @tparam Loaded  Loaded(int entries) loads the file with that many entries. It has
///                 std::string valueOf(key) and std::size_t size().
template <typename Loaded>
bool addLoading(const std::string& contestant) {
    for (const int entries : loadSizes) {
        const std::string size = std::to_string(entries) + " entries";
        const auto run = [entries](Timed timed) {
            return [=](benchmark::State& state) { runLoading<Loaded>(state, entries, timed); };
        };
        add("load", size, contestant, run(Timed::loading))->UseManualTime();
        add("load", "teardown, " + size, contestant, run(Timed::teardown))->UseManualTime();
    }
    return true;
}

} // namespace bench
