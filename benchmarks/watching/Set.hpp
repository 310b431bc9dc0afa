/// The work of all contestants: set an option that is watched.
#pragma once

#include "../Harness.hpp"

#include <connector/configuration/OptionValue.hpp>

#include <optional>
#include <string>

namespace bench::watching {

using connector::configuration::OptionValue;

/// What every watcher does with a value: it keeps a copy.
class Keeper {
public:
    void keep(const OptionValue& value) { newest.emplace(value); }
    bool holds(const OptionValue& value) const { return newest == value; }

private:
    std::optional<OptionValue> newest;
};

inline OptionValue valueNumber(int number, std::size_t length) {
    if (length == 0)
        return number;
    return bench::textNumber(number, length);
}

/// Sets two values in turn.
/// @param sizes  the arguments of the contestant's constructor
template <typename Contestant, typename... Size>
void set(benchmark::State& state, std::size_t length, Size... sizes) {
    Contestant contestant(sizes...);
    const OptionValue values[] = {valueNumber(1, length), valueNumber(2, length)};
    std::size_t next = 0;
    for (auto _ : state) {
        contestant.set(values[next]);
        next = 1 - next;
    }
    if (!contestant.allHold(values[1 - next]))
        state.SkipWithError("a watcher missed the last value");
}

/// @tparam Contestant  constructed with the number of its watchers
template <typename Contestant>
void addManyWatchers(const std::string& contestant) {
    for (const int watchers : {1, 10, 1000}) {
        for (const std::size_t length : {0, 40})
            add("watching",
                "set, " + std::to_string(watchers) + " watchers, " +
                    (length == 0 ? "int" : std::to_string(length) + " bytes"),
                contestant,
                [=](benchmark::State& state) { set<Contestant>(state, length, watchers); });
    }
}

} // namespace bench::watching
