/// Starting and stopping.
#include "support/Expect.hpp"

#include <connector/common/Lifecycle.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using connector::common::Lifecycle;
using testing::ElementsAre;

/// Notes each hook with the running flag that it sees.
class Watched : public Lifecycle {
public:
    std::vector<std::string> hooks;
    bool failsToStart = false;
    bool failsToStop = false;

protected:
    void onStart() override { note("onStart", failsToStart); }
    void onStop() override { note("onStop", failsToStop); }

private:
    void note(const std::string& hook, bool fails) {
        hooks.push_back(hook + (isRunning() ? ", running" : ", not running"));
        if (fails)
            throw std::runtime_error(hook + " failed");
    }
};

TEST(Lifecycle, DoesNotRunAtFirst) {
    EXPECT_FALSE(Lifecycle().isRunning());
}

TEST(Lifecycle, RunsFromStartToStop) {
    Lifecycle lifecycle;
    lifecycle.start();
    EXPECT_TRUE(lifecycle.isRunning());
    lifecycle.stop();
    EXPECT_FALSE(lifecycle.isRunning());
}

TEST(Lifecycle, CanBeStartedAgain) {
    Lifecycle lifecycle;
    lifecycle.start();
    lifecycle.stop();
    lifecycle.start();
    EXPECT_TRUE(lifecycle.isRunning());
}

TEST(Lifecycle, CallsEachHookBeforeTheFlagChanges) {
    Watched watched;
    watched.start();
    watched.stop();
    EXPECT_THAT(watched.hooks, ElementsAre("onStart, not running", "onStop, running"));
}

TEST(Lifecycle, ThatFailsToStartDoesNotRun) {
    Watched watched;
    watched.failsToStart = true;
    test::expectThrows<std::runtime_error>("onStart failed", [&] { watched.start(); });
    EXPECT_FALSE(watched.isRunning());
}

TEST(Lifecycle, ThatFailsToStopGoesOnRunning) {
    Watched watched;
    watched.failsToStop = true;
    watched.start();
    test::expectThrows<std::runtime_error>("onStop failed", [&] { watched.stop(); });
    EXPECT_TRUE(watched.isRunning());
}

/// Nothing but the flag itself brings the news to the other thread.
TEST(Lifecycle, IsSeenByAnotherThread) {
    Lifecycle lifecycle;
    std::thread other([&] {
        while (!lifecycle.isRunning())
            std::this_thread::yield();
        lifecycle.stop();
    });
    lifecycle.start();
    while (lifecycle.isRunning())
        std::this_thread::yield();
    other.join();
    EXPECT_FALSE(lifecycle.isRunning());
}

} // namespace
