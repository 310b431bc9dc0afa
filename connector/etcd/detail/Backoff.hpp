/// The pauses between attempts to connect.
#pragma once

#include <chrono>
#include <random>

namespace connector::etcd::detail {

/// Full jitter: each pause is random between zero and a bound that doubles. Used by one thread.
class Backoff {
public:
    using Milliseconds = std::chrono::milliseconds;

    /// @param newFirst  the bound of the first pause
    /// @param newLongest  the time from a moment in which the engine begins to answer to the next
    ///        successful attempt, at most
    Backoff(Milliseconds newFirst, Milliseconds newLongest, std::uint64_t seed)
        : first(newFirst), longest(newLongest), bound(newFirst), random(seed) {}

    /// @param round  how long the attempts since the last pause took, over all endpoints. The
    ///        engine may begin to answer right after its endpoint was tried; then the rest of that
    ///        round, the pause and another round pass. So the pause is shorter by two rounds.
    /// @return the next pause
    Milliseconds next(Milliseconds round);

    /// Starts again with the first bound.
    void reset() { bound = first; }

private:
    const Milliseconds first;
    const Milliseconds longest;
    Milliseconds bound;
    std::mt19937_64 random;
};

} // namespace connector::etcd::detail
