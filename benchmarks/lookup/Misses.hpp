/// Lookups of options that do not exist: get throws.
#pragma once

#include "Hits.hpp"

#include <exception>

namespace bench::lookup {

inline const std::string missingKey = "section.option.none";

template <typename Contestant>
void runMisses(benchmark::State& state, const Tables& tables, const std::string& text) {
    Contestant& contestant = contestantWith<Contestant>(tables);
    bool isRight = true;
    for (auto _ : state) {
        try {
            benchmark::DoNotOptimize(contestant.template get<std::string>(missingKey));
            isRight = false;
        } catch (const std::exception& failure) {
            isRight &= text.empty() || failure.what() == text;
        }
    }
    if (!isRight)
        state.SkipWithError("something was found, or the exception says something else");
}

/// @param text  the expected text of the exception; empty: any text
template <typename Contestant>
void addMisses(const std::string& contestant, const std::string& text = "") {
    const Tables tables{1000, 2, false, 12};
    add("lookup", "miss, 1000 keys, 2 layers", contestant,
        [=](benchmark::State& state) { runMisses<Contestant>(state, tables, text); });
}

} // namespace bench::lookup
