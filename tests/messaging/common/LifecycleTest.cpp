/// Starting and stopping a service.
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

/// Records each hook with the running flag that it sees.
class RecordingLifecycle : public Lifecycle {
public:
    std::vector<std::string> hooks;
    bool failsToStart = false;
    bool failsToStop = false;

protected:
    void onStart() override { record("onStart", failsToStart); }
    void onStop() override { record("onStop", failsToStop); }

private:
    void record(const std::string& hook, bool fails) {
        hooks.push_back(hook + (isRunning() ? ", running" : ", not running"));
        if (fails)
            throw std::runtime_error(hook + " failed");
    }
};

TEST(Lifecycle, IsNotRunningInitially) {
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
    RecordingLifecycle lifecycle;
    lifecycle.start();
    lifecycle.stop();
    EXPECT_THAT(lifecycle.hooks, ElementsAre("onStart, not running", "onStop, running"));
}

TEST(Lifecycle, IsNotRunningAfterAFailedStart) {
    RecordingLifecycle lifecycle;
    lifecycle.failsToStart = true;
    test::expectThrows<std::runtime_error>("onStart failed", [&] { lifecycle.start(); });
    EXPECT_FALSE(lifecycle.isRunning());
}

TEST(Lifecycle, IsStillRunningAfterAFailedStop) {
    RecordingLifecycle lifecycle;
    lifecycle.failsToStop = true;
    lifecycle.start();
    test::expectThrows<std::runtime_error>("onStop failed", [&] { lifecycle.stop(); });
    EXPECT_TRUE(lifecycle.isRunning());
}

/// Only the running flag synchronises the two threads.
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
