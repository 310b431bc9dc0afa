/// What the contestants of the lookup benchmarks are asked: the same of all.
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

/// Layers of options. Every layer has the same number of keys. The keys with an even number stand in
/// the first layer, those with an odd one in the last; what else fills the layers is asked by nobody.
struct Tables {
    int keys; ///< in each layer
    int layers;
    bool grouped;       ///< the layers stand under a group
    std::size_t length; ///< of the texts; 0: the values are ints

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
            const bool isAsked = layer == (i % 2 == 0 ? 0 : layers - 1);
            const std::string filler = isAsked ? "" : "/" + std::to_string(layer);
            made[static_cast<std::size_t>(layer)].emplace(
                keyNumber(i) + filler, length == 0 ? OptionValue(i) : textNumber(i, length));
        }
    }
    return made;
}

struct Question {
    Tables tables;
    bool inFirst; ///< the first layer has it, or only the last

    std::string description() const {
        return std::to_string(tables.keys) + " keys, " + std::to_string(tables.layers) +
               (tables.layers == 1 ? " layer, " : " layers, ") + (inFirst ? "first, " : "last, ") +
               (tables.grouped ? "group, " : "no group, ") +
               (tables.length == 0 ? "int" : std::to_string(tables.length) + " bytes");
    }
};

/// One thing to ask, and what is right.
template <typename T>
struct Asked {
    std::string key;
    T value;
};

/// @return up to 500 keys that stand in the layer, spread over it
template <typename T>
std::vector<Asked<T>> asked(const Question& question) {
    const Tables& tables = question.tables;
    const int count = std::min(tables.keys / 2, 500);
    const int stride = tables.keys / 2 / count;
    std::vector<Asked<T>> all;
    for (int i = 0; i < count; ++i) {
        const int number = i * stride * 2 + (question.inFirst ? 0 : 1);
        all.push_back({tables.group() + keyNumber(number), valueNumber<T>(number, tables.length)});
    }
    return all;
}

} // namespace bench::lookup
