/// What the benchmark programs share: how a case is named, and how contestants are set beside each
/// other.
///
/// A case has a subject ("lookup"), a description ("hit, 1000 keys, 2 layers, int") and contestants:
/// "ours", "floor" (the least that the work can cost, written by hand), "literal" (the rules word for
/// word) and the peers by their names. scripts/bench sets the contestants of a case in relation.
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <type_traits>
#include <utility>

#include <malloc.h>

namespace bench {

/// Puts the heap in order. What is freed in small pieces is put together only when somebody asks for a
/// large one: behind a table of a million entries the next one who loads a thousand would pay for that,
/// a hundred times what the load costs.
inline void settleHeap() {
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
}

/// Registers one contestant of one case as SUBJECT/DESCRIPTION/CONTESTANT; no part may have a slash.
/// @param run  void(benchmark::State&), which also checks that the work's result is right and calls
///             state.SkipWithError when it is not
template <typename Run>
benchmark::internal::Benchmark* add(const std::string& subject, const std::string& description,
                                    const std::string& contestant, Run&& run) {
    const std::string name = subject + '/' + description + '/' + contestant;
    return benchmark::RegisterBenchmark(
        name.c_str(), [run = std::decay_t<Run>(std::forward<Run>(run))](benchmark::State& state) {
            settleHeap(); // the contestants come in an order of chance
            run(state);
        });
}

/// @return the key with that number; keys of one table differ at their end, as real ones do
inline std::string keyNumber(int number) {
    return "section.option." + std::to_string(number);
}

/// @return the text that is kept under a key, of `length` bytes
inline std::string textNumber(int number, std::size_t length) {
    std::string text = std::to_string(number);
    text.resize(length, 'x');
    return text;
}

} // namespace bench
