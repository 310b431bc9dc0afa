// The pauses between attempts.
#include <connector/etcd/detail/Backoff.hpp>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace std::chrono_literals;
using connector::etcd::detail::Backoff;

TEST(BackoffTest, BoundsDoubleUpToTheLongest) {
    std::vector<std::chrono::milliseconds> longest(14, 0ms);
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        Backoff backoff(50ms, 30s, seed);
        auto bound = 50ms;
        for (auto& most : longest) {
            const auto pause = backoff.next(0ms);
            EXPECT_GE(pause, 0ms);
            EXPECT_LE(pause, std::min<std::chrono::milliseconds>(bound, 29s));
            bound *= 2;
            most = std::max(most, pause);
        }
    }
    EXPECT_GT(longest.front(), 45ms);
    EXPECT_GT(longest[5], 1'450ms);
    EXPECT_GT(longest.back(), 28s);
}

TEST(BackoffTest, PausesAreShorterByTwoRounds) {
    Backoff backoff(50ms, 30s, 1);
    for (int i = 0; i < 1'000; ++i)
        EXPECT_LE(backoff.next(7s), 15s);
    for (int i = 0; i < 1'000; ++i)
        EXPECT_LE(backoff.next(60s), 1s);
}

TEST(BackoffTest, BeginsAgainAfterAReset) {
    Backoff backoff(50ms, 30s, 1);
    for (int i = 0; i < 20; ++i)
        backoff.next(0ms);
    backoff.reset();
    EXPECT_LE(backoff.next(0ms), 50ms);
    EXPECT_LE(backoff.next(0ms), 100ms);
}

} // namespace
