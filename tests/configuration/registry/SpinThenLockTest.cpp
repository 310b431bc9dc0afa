/// How long a lookup spins for a locked mutex. The header is private to the library. The test
/// supplies the clock and the pauses.
#include <connector/configuration/registry/SpinThenLock.hpp>

#include <gtest/gtest.h>

#include <chrono>

namespace {

using connector::configuration::detail::maxSpinTime;
using connector::configuration::detail::spinUntilLocked;
using std::chrono::nanoseconds;

/// A clock that only pauses advance.
struct ManualClock {
    using duration = nanoseconds;
    using time_point = std::chrono::time_point<ManualClock, duration>;

    static time_point now() { return current; }
    static inline time_point current{};
};

/// A mutex that becomes free at the given attempt, or never.
struct ScriptedLock {
    bool try_lock() { return ++attempts == freeAt; }

    int freeAt = 0;
    int attempts = 0;
};

/// @param pause  the duration of one pause
nanoseconds timeSpent(ScriptedLock& lock, nanoseconds pause) {
    const auto start = ManualClock::now();
    spinUntilLocked<ManualClock>(lock, [pause] { ManualClock::current += pause; });
    return ManualClock::now() - start;
}

TEST(SpinThenLock, StopsAfterTenMicrosecondsForEveryLengthOfAPause) {
    for (const nanoseconds pause : {nanoseconds(5), nanoseconds(12), nanoseconds(50)}) {
        ScriptedLock lock;
        const nanoseconds spent = timeSpent(lock, pause);
        EXPECT_GE(spent, maxSpinTime);
        EXPECT_LE(spent, maxSpinTime + 16 * pause);
    }
}

TEST(SpinThenLock, DoesNotPauseForAMutexThatIsFreeAgain) {
    ScriptedLock lock{1};
    EXPECT_EQ(nanoseconds(0), timeSpent(lock, nanoseconds(50)));
}

TEST(SpinThenLock, DoublesItsPausesUpToSixteen) {
    ScriptedLock lock{7};
    EXPECT_EQ(nanoseconds(1 + 2 + 4 + 8 + 16 + 16), timeSpent(lock, nanoseconds(1)));
}

} // namespace
