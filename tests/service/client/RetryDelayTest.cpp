/// How long a client waits before it connects again.
#include <connector/service/client/RetryDelay.hpp>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using connector::service::RetryDelay;
using Duration = RetryDelay::Duration;

constexpr int attempts = 1000;

TEST(RetryDelay, GrowsAtRandomUpToTheMaximum) {
    RetryDelay delay(Duration(100), Duration(10000));
    Duration previous(100);
    Duration longest(0);
    for (int i = 0; i < attempts; ++i) {
        const Duration wait = delay.next();
        EXPECT_LE(Duration(100), wait);
        EXPECT_GE(std::min(3 * previous, Duration(10000)), wait);
        previous = wait;
        longest = std::max(longest, wait);
    }
    EXPECT_LT(Duration(1000), longest);
    delay.reset();
    EXPECT_GE(Duration(300), delay.next());
}

TEST(RetryDelay, NeverExceedsTheMaximum) {
    for (const Duration minimum : {Duration(60000), Duration::max()}) {
        RetryDelay delay(minimum, Duration(10000));
        for (int i = 0; i < attempts; ++i)
            EXPECT_EQ(Duration(10000), delay.next());
    }
}

TEST(RetryDelay, MayHaveAnyMaximum) {
    RetryDelay delay(Duration(1), Duration::max());
    for (int i = 0; i < attempts; ++i)
        EXPECT_LE(Duration(1), delay.next());
}

TEST(RetryDelay, MayBeNothing) {
    RetryDelay delay(Duration(0), Duration(0));
    EXPECT_EQ(Duration(0), delay.next());
}

} // namespace
