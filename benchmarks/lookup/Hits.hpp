/// The cases in which there is such an option, to be registered for each contestant.
///
/// A contestant is made from Tables and has `T get<T>(const std::string& key)`, T being int or
/// std::string, which throws a std::exception for a missing key.
#pragma once

#include "Question.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace bench::lookup {

/// @return the contestant with those tables; made once, as big tables take longer to build than to ask
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

/// Numbers in an order that does not come again, so that the processor cannot learn by heart which way
/// each question goes through a table. The same for every contestant.
class Chance {
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
void runHits(benchmark::State& state, const Question& question) {
    Contestant& contestant = contestantWith<Contestant>(question.tables);
    const std::vector<Asked<T>> questions = asked<T>(question);
    Chance chance;
    bool isRight = true;
    for (auto _ : state) {
        const Asked<T>& now = questions[chance.below(questions.size())];
        isRight &= contestant.template get<T>(now.key) == now.value;
    }
    if (!isRight)
        state.SkipWithError("another value was found");
}

template <typename Contestant>
benchmark::internal::Benchmark* addHits(const std::string& description,
                                        const std::string& contestant, const Question& question) {
    const auto run =
        question.tables.length == 0 ? runHits<Contestant, int> : runHits<Contestant, std::string>;
    return add("lookup", description + question.description(), contestant,
               [run, question](benchmark::State& state) { run(state, question); });
}

/// @param maximalLayers  for contestants that know no layers
template <typename Contestant>
void addAllHits(const std::string& contestant, int maximalLayers = 6) {
    const auto add = [&](const Question& question) {
        if (question.tables.layers <= maximalLayers)
            addHits<Contestant>("hit, ", contestant, question);
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
