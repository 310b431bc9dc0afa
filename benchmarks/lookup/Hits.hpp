/// Lookups of options that exist.
///
/// A contestant is constructed from Tables and has `T get<T>(const std::string& key)`, T being int
/// or std::string, which throws a std::exception for a missing key.
#pragma once

#include "LookupCase.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace bench::lookup {

/// @return the contestant with those tables. It is created once, because building large tables
///         takes longer than the lookups.
template <typename Contestant>
Contestant& contestantWith(const Tables& tables) {
    static std::mutex mutex;
    static std::map<Tables, std::unique_ptr<Contestant>> contestants;
    const std::lock_guard<std::mutex> lock(mutex);
    std::unique_ptr<Contestant>& contestant = contestants[tables];
    if (!contestant)
        contestant = std::make_unique<Contestant>(tables);
    return *contestant;
}

/// Pseudo-random numbers whose order does not repeat, so that the branch predictor cannot learn the
/// path of each lookup. They are the same for every contestant.
class RandomNumbers {
public:
    std::size_t below(std::size_t limit) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return (std::uint64_t{state} * limit) >> 32;
    }

private:
    std::uint32_t state = 2463534242;
};

template <typename Contestant, typename T>
void runHits(benchmark::State& state, const LookupCase& lookupCase) {
    Contestant& contestant = contestantWith<Contestant>(lookupCase.tables);
    const std::vector<Expectation<T>> lookups = expectations<T>(lookupCase);
    RandomNumbers random;
    bool isRight = true;
    for (auto _ : state) {
        const Expectation<T>& next = lookups[random.below(lookups.size())];
        isRight &= contestant.template get<T>(next.key) == next.value;
    }
    if (!isRight)
        state.SkipWithError("another value was found");
}

template <typename Contestant>
benchmark::internal::Benchmark* addHits(const std::string& description,
                                        const std::string& contestant,
                                        const LookupCase& lookupCase) {
    const auto run =
        lookupCase.tables.length == 0 ? runHits<Contestant, int> : runHits<Contestant, std::string>;
    return add("lookup", description + lookupCase.description(), contestant,
               [run, lookupCase](benchmark::State& state) { run(state, lookupCase); });
}

/// @param maximalLayers  1 for contestants without layers
template <typename Contestant>
void addAllHits(const std::string& contestant, int maximalLayers = 6) {
    const auto add = [&](const LookupCase& lookupCase) {
        if (lookupCase.tables.layers <= maximalLayers)
            addHits<Contestant>("hit, ", contestant, lookupCase);
    };
    for (const int keys : {10, 1000, 100000}) {
        add({{keys, 1, false, 12}, true});
        for (const bool inFirst : {true, false}) {
            add({{keys, 2, false, 12}, inFirst});
            add({{keys, 6, false, 12}, inFirst});
        }
    }
    for (const std::size_t length : {0, 40}) {
        add({{1000, 1, false, length}, true});
        for (const bool inFirst : {true, false})
            add({{1000, 2, false, length}, inFirst});
    }
    for (const std::size_t length : {0, 12, 40}) {
        for (const bool inFirst : {true, false})
            add({{1000, 2, true, length}, inFirst});
    }
}

} // namespace bench::lookup
