/// The end of a shutdown that takes too long.
#include "commands/ExitTimer.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <signal.h>
#include <unistd.h>

namespace {

using std::chrono::milliseconds;

TEST(ExitTimer, EndsAProcessThatWaits) {
    EXPECT_EXIT(
        {
            sigset_t all; // as an application may have blocked it
            sigfillset(&all);
            pthread_sigmask(SIG_SETMASK, &all, nullptr);
            connector_config::exitAfter(milliseconds(10));
            std::thread([] {
                for (;;)
                    ::pause();
            }).join();
        },
        testing::ExitedWithCode(0), "^$");
}

TEST(ExitTimer, LeavesTheProcessItsTime) {
    EXPECT_EXIT(
        {
            connector_config::exitAfter(std::chrono::hours(1));
            ::_exit(3);
        },
        testing::ExitedWithCode(3), "^$");
}

} // namespace
