/// Generates random programs. The same seed gives the same program on every machine.
#pragma once

#include "ProgramRunner.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace test::model {

class Generator {
public:
    explicit Generator(std::uint64_t seed) : engine(seed) {}
    virtual ~Generator() = default;
    Generator(const Generator&) = delete;
    Generator& operator=(const Generator&) = delete;

    Program program(std::size_t steps);

protected:
    virtual Operation operation() = 0;

    Operation offer();
    Operation subscribe();
    Operation request();
    Operation cancel();
    Operation release();
    Operation followCompletion();

    // Not std::uniform_int_distribution, which differs between standard libraries.
    std::size_t below(std::size_t end) { return engine() % end; }
    bool chance(unsigned percent) { return below(100) < percent; }
    template <typename T>
    const T& oneOf(const std::vector<T>& choices) {
        return choices[below(choices.size())];
    }

    int value(); ///< usually a new one
    std::size_t stream();
    std::shared_ptr<const Script> script();

private:
    Script makeScript();
    Reaction reaction(unsigned percentOfThrows);

    std::mt19937_64 engine;
    int lastValue = 0;
    int depth = 0; // of scripts within scripts
};

/// Generates programs for publishers without a configuration.
class PublisherGenerator final : public Generator {
public:
    using Generator::Generator;

protected:
    Operation operation() override;

private:
    Operation addPublisher();
};

} // namespace test::model
