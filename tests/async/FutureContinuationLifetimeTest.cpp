/// The lifetime of a continuation and of its state, and states that no shared pointer owns.
#include <connector/async/Future.hpp>

#include "async/Internals.hpp"
#include "async/States.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace connector {

using test::expectThrows;
using test::failure;
using test::State;

namespace {

using Events = std::vector<std::string>;

/// Records its call and its destruction.
class RecordingContinuation : public detail::FutureContinuation<int> {
public:
    explicit RecordingContinuation(Events& newEvents) : events(newEvents) {}
    ~RecordingContinuation() override { events.push_back("destroyed"); }
    void invoke(Future<int>& future) override {
        events.push_back(future.valid() ? "invoked" : "invoked without a future");
        inInvoke(future);
    }

    std::function<void(Future<int>&)> inInvoke = [](Future<int>&) {};

private:
    Events& events;
};

} // namespace

TEST(FutureContinuationLifetime, ItIsDestroyedAfterItHasRun) {
    Events events;
    const auto state = std::make_shared<State>();
    state->setContinuation(std::make_unique<RecordingContinuation>(events));
    state->setValue(1);
    EXPECT_EQ((Events{"invoked", "destroyed"}), events);
}

TEST(FutureContinuationLifetime, ItIsDestroyedAfterItsFuture) {
    Events events;
    auto state = std::make_shared<State>();
    const std::weak_ptr<State> watched = state;
    struct CheckingOwners : RecordingContinuation {
        CheckingOwners(Events& events, std::weak_ptr<State> state)
            : RecordingContinuation(events), watched(std::move(state)) {}
        ~CheckingOwners() override { EXPECT_EQ(1, watched.use_count()); }
        const std::weak_ptr<State> watched;
    };
    state->setContinuation(std::make_unique<CheckingOwners>(events, watched));
    state->setValue(1);
    EXPECT_EQ((Events{"invoked", "destroyed"}), events);
}

TEST(FutureContinuationLifetime, ItIsDestroyedWhenItThrows) {
    Events events;
    const auto state = std::make_shared<State>();
    auto throwing = std::make_unique<RecordingContinuation>(events);
    throwing->inInvoke = [](Future<int>&) { throw std::runtime_error("no"); };
    state->setContinuation(std::move(throwing));
    EXPECT_THROW(state->setValue(1), std::runtime_error);
    EXPECT_EQ((Events{"invoked", "destroyed"}), events);
}

TEST(FutureContinuationLifetime, AContinuationThatNeverRanIsDestroyedWithTheState) {
    Events events;
    auto state = std::make_shared<State>();
    state->setContinuation(std::make_unique<RecordingContinuation>(events));
    state->cancel();
    EXPECT_TRUE(events.empty());
    state.reset();
    EXPECT_EQ((Events{"destroyed"}), events);
}

TEST(FutureContinuationLifetime, ARefusedContinuationIsDestroyed) {
    Events events;
    const auto state = std::make_shared<State>();
    Future<int>(state).then([](Future<int>&) {});
    EXPECT_THROW(state->setContinuation(std::make_unique<RecordingContinuation>(events)),
                 std::runtime_error);
    EXPECT_EQ((Events{"destroyed"}), events);
}

TEST(FutureContinuationLifetime, ItMayDropTheLastPointerToTheState) {
    using Resolve = std::function<void(State&)>;
    const std::vector<Resolve> operations{[](State& state) { state.setValue(1); },
                                          [](State& state) { state.setException(failure("no")); },
                                          [](State& state) { state.abandon(); }};
    for (const Resolve& resolve : operations) {
        Events events;
        auto state = std::make_shared<State>();
        const std::weak_ptr<State> watched = state;
        auto dropping = std::make_unique<RecordingContinuation>(events);
        dropping->inInvoke = [&](Future<int>&) { state.reset(); };
        state->setContinuation(std::move(dropping));
        resolve(*state);
        EXPECT_TRUE(watched.expired());
        EXPECT_EQ((Events{"invoked", "destroyed"}), events);
    }
}

TEST(FutureContinuationLifetime, ItMayDropTheLastPointerToAResolvedState) {
    Events events;
    auto state = std::make_shared<State>();
    state->setValue(1);
    auto dropping = std::make_unique<RecordingContinuation>(events);
    dropping->inInvoke = [&](Future<int>&) { state.reset(); };
    state->setContinuation(std::move(dropping));
    EXPECT_EQ((Events{"invoked", "destroyed"}), events);
}

TEST(FutureContinuationLifetime, ItMayDestroyTheFutureThatAttachedIt) {
    std::unique_ptr<Future<int>> handle;
    int seen = 0;
    const auto dropAndRead = [&](Future<int>& ready) {
        handle.reset();
        seen = ready.get();
    };
    handle = std::make_unique<Future<int>>(makeReadyFuture(7));
    handle->then(dropAndRead);
    EXPECT_EQ(7, seen);

    const auto state = std::make_shared<State>();
    handle = std::make_unique<Future<int>>(state->getFuture());
    handle->then(dropAndRead);
    state->setValue(8);
    EXPECT_EQ(8, seen);
}

TEST(FutureContinuationWithoutOwner, SetValueThrowsAndKeepsTheValue) {
    Events events;
    State state;
    state.setContinuation(std::make_unique<RecordingContinuation>(events));
    EXPECT_THROW(state.setValue(1), std::bad_weak_ptr);
    EXPECT_EQ((Events{"destroyed"}), events);
    EXPECT_EQ(1, state.get());
}

TEST(FutureContinuationWithoutOwner, SetExceptionThrowsAndKeepsTheException) {
    Events events;
    State state;
    state.setContinuation(std::make_unique<RecordingContinuation>(events));
    EXPECT_THROW(state.setException(failure("no")), std::bad_weak_ptr);
    EXPECT_EQ((Events{"destroyed"}), events);
    expectThrows<std::runtime_error>("no", [&] { state.get(); });
}

TEST(FutureContinuationWithoutOwner, AbandonThrows) {
    Events events;
    State state;
    state.setContinuation(std::make_unique<RecordingContinuation>(events));
    EXPECT_THROW(state.abandon(), std::bad_weak_ptr);
    EXPECT_EQ((Events{"destroyed"}), events);
}

TEST(FutureContinuationWithoutOwner, AttachingToAResolvedStateThrows) {
    Events events;
    State state;
    state.setValue(1);
    EXPECT_THROW(state.setContinuation(std::make_unique<RecordingContinuation>(events)),
                 std::bad_weak_ptr);
    EXPECT_EQ((Events{"destroyed"}), events);
    EXPECT_EQ(1, state.get());
}

} // namespace connector
