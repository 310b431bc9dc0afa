/// Requests that went wrong on the way.
#pragma once

#include <random>
#include <string>

namespace test {

/// Makes one more wrong request each time, the same ones in every run.
class Mutations {
public:
    explicit Mutations(unsigned seed) : random(seed) {}

    /// @return bytes without a line end that are more than blanks
    std::string next();

private:
    void mutate(std::string& text);
    std::size_t below(std::size_t bound);

    std::mt19937 random;
};

} // namespace test
