/// Corrupted requests.
#pragma once

#include <random>
#include <string>

namespace test {

/// Generates randomly corrupted requests, the same ones in every run.
class Mutations {
public:
    explicit Mutations(unsigned seed) : random(seed) {}

    /// @return a line that is not blank, without its line break
    std::string next();

private:
    void mutate(std::string& text);
    std::size_t below(std::size_t bound);

    std::mt19937 random;
};

} // namespace test
