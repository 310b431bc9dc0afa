/// The tables and lookups of the benchmarks, which are the same for all contestants.
#pragma once

#include "../Harness.hpp"

#include <connector/configuration/OptionValue.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bench::lookup {

using connector::configuration::OptionValue;
using Layer = std::unordered_map<std::string, OptionValue>;

/// Layers of options. Every layer has the same number of keys. Keys with an even number are in the
/// first layer, those with an odd number in the last. The other keys of a layer are never looked
/// up.
struct Tables {
    int keys; ///< in each layer
    int layers;
    bool grouped;       ///< the layers have a group
    std::size_t length; ///< of the texts; 0 if the values are ints

    std::string group() const { return grouped ? "application." : ""; }
    std::vector<Layer> make() const;

    bool operator<(const Tables& other) const {
        return std::tie(keys, layers, grouped, length) <
               std::tie(other.keys, other.layers, other.grouped, other.length);
    }
};

template <typename T>
T valueNumber(int number, std::size_t length) {
    if constexpr (std::is_same_v<T, int>)
        return number;
    else
        return textNumber(number, length);
}

inline std::vector<Layer> Tables::make() const {
    std::vector<Layer> made(static_cast<std::size_t>(layers));
    for (int layer = 0; layer < layers; ++layer) {
        for (int i = 0; i < keys; ++i) {
            const bool isLookedUp = layer == (i % 2 == 0 ? 0 : layers - 1);
            const std::string filler = isLookedUp ? "" : "/" + std::to_string(layer);
            made[static_cast<std::size_t>(layer)].emplace(
                keyNumber(i) + filler, length == 0 ? OptionValue(i) : textNumber(i, length));
        }
    }
    return made;
}

struct LookupCase {
    Tables tables;
    bool inFirst; ///< whether the first layer has the keys, or only the last one

    std::string description() const {
        return std::to_string(tables.keys) + " keys, " + std::to_string(tables.layers) +
               (tables.layers == 1 ? " layer, " : " layers, ") + (inFirst ? "first, " : "last, ") +
               (tables.grouped ? "group, " : "no group, ") +
               (tables.length == 0 ? "int" : std::to_string(tables.length) + " bytes");
    }
};

/// A lookup and its expected result.
template <typename T>
struct Expectation {
    std::string key;
    T value;
};

/// @return up to 500 keys of the layer, evenly spaced
template <typename T>
std::vector<Expectation<T>> expectations(const LookupCase& lookupCase) {
    const Tables& tables = lookupCase.tables;
    const int count = std::min(tables.keys / 2, 500);
    const int stride = tables.keys / 2 / count;
    std::vector<Expectation<T>> all;
    for (int i = 0; i < count; ++i) {
        const int number = i * stride * 2 + (lookupCase.inFirst ? 0 : 1);
        all.push_back({tables.group() + keyNumber(number), valueNumber<T>(number, tables.length)});
    }
    return all;
}

} // namespace bench::lookup
