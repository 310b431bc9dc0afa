/// What the benchmark programs share: the names of cases and their registration.
///
/// A case has a subject ("lookup"), a description ("hit, 1000 keys, 2 layers, int") and
/// contestants: "ours", "floor" (a minimal implementation by hand), "literal" (the documented
/// behaviour step by step, without any optimisation) and other libraries by their names.
/// scripts/bench reports how our time compares with that of every other contestant of the same
/// case.
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <type_traits>
#include <utility>

#include <malloc.h>

namespace bench {

/// Consolidates the heap. glibc merges small freed blocks only when a large one is allocated. After
/// a table of a million entries, the next load of a thousand entries would pay for that merging,
/// which costs a hundred times more than the load.
inline void settleHeap() {
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
}

/// Registers one contestant of one case as SUBJECT/DESCRIPTION/CONTESTANT. No part may contain a
/// slash.
/// @param run  void(benchmark::State&), which also checks the result of the work and calls
///             state.SkipWithError when it is wrong
template <typename Run>
benchmark::internal::Benchmark* add(const std::string& subject, const std::string& description,
                                    const std::string& contestant, Run&& run) {
    const std::string name = subject + '/' + description + '/' + contestant;
    return benchmark::RegisterBenchmark(
        name.c_str(), [run = std::decay_t<Run>(std::forward<Run>(run))](benchmark::State& state) {
            settleHeap(); // the contestants run in random order
            run(state);
        });
}

/// @return the key with that number. Keys of one table differ at the end, like real ones.
inline std::string keyNumber(int number) {
    return "section.option." + std::to_string(number);
}

/// @return the text with that number, of `length` bytes
inline std::string textNumber(int number, std::size_t length) {
    std::string text = std::to_string(number);
    text.resize(length, 'x');
    return text;
}

} // namespace bench
