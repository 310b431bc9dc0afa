/// Who owns a continuation, when it goes, and what happens where nobody owns its state.
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

/// Tells when it is destroyed.
class Witness : public detail::FutureContinuation<int> {
public:
    explicit Witness(Events& newEvents) : events(newEvents) {}
    ~Witness() override { events.push_back("destroyed"); }
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
    state->setContinuation(std::make_unique<Witness>(events));
    state->setValue(1);
    EXPECT_EQ((Events{"invoked", "destroyed"}), events);
}

TEST(FutureContinuationLifetime, ItIsDestroyedAfterItsFuture) {
    Events events;
    auto state = std::make_shared<State>();
    const std::weak_ptr<State> watched = state;
    struct AsksAtTheEnd : Witness {
        AsksAtTheEnd(Events& events, std::weak_ptr<State> state)
            : Witness(events), watched(std::move(state)) {}
        ~AsksAtTheEnd() override { EXPECT_EQ(1, watched.use_count()); }
        const std::weak_ptr<State> watched;
    };
    state->setContinuation(std::make_unique<AsksAtTheEnd>(events, watched));
    state->setValue(1);
    EXPECT_EQ((Events{"invoked", "destroyed"}), events);
}

TEST(FutureContinuationLifetime, ItIsDestroyedWhenItThrows) {
    Events events;
    const auto state = std::make_shared<State>();
    auto throwing = std::make_unique<Witness>(events);
    throwing->inInvoke = [](Future<int>&) { throw std::runtime_error("no"); };
    state->setContinuation(std::move(throwing));
    EXPECT_THROW(state->setValue(1), std::runtime_error);
    EXPECT_EQ((Events{"invoked", "destroyed"}), events);
}

TEST(FutureContinuationLifetime, OneThatNeverRanIsDestroyedWithTheState) {
    Events events;
    auto state = std::make_shared<State>();
    state->setContinuation(std::make_unique<Witness>(events));
    state->cancel();
    EXPECT_TRUE(events.empty());
    state.reset();
    EXPECT_EQ((Events{"destroyed"}), events);
}

TEST(FutureContinuationLifetime, OneThatIsRefusedIsDestroyed) {
    Events events;
    const auto state = std::make_shared<State>();
    Future<int>(state).then([](Future<int>&) {});
    EXPECT_THROW(state->setContinuation(std::make_unique<Witness>(events)), std::runtime_error);
    EXPECT_EQ((Events{"destroyed"}), events);
}

TEST(FutureContinuationLifetime, TheLastOwnerOfTheStateMayGoWhileItRuns) {
    using Resolve = std::function<void(State&)>;
    const std::vector<Resolve> operations{[](State& state) { state.setValue(1); },
                                          [](State& state) { state.setException(failure("no")); },
                                          [](State& state) { state.abandon(); }};
    for (const Resolve& resolve : operations) {
        Events events;
        auto state = std::make_shared<State>();
        const std::weak_ptr<State> watched = state;
        auto dropping = std::make_unique<Witness>(events);
        dropping->inInvoke = [&](Future<int>&) { state.reset(); };
        state->setContinuation(std::move(dropping));
        resolve(*state);
        EXPECT_TRUE(watched.expired());
        EXPECT_EQ((Events{"invoked", "destroyed"}), events);
    }
}

TEST(FutureContinuationLifetime, TheLastOwnerOfAResolvedStateMayGoWhileItRuns) {
    Events events;
    auto state = std::make_shared<State>();
    state->setValue(1);
    auto dropping = std::make_unique<Witness>(events);
    dropping->inInvoke = [&](Future<int>&) { state.reset(); };
    state->setContinuation(std::move(dropping));
    EXPECT_EQ((Events{"invoked", "destroyed"}), events);
}

TEST(FutureContinuationLifetime, TheHandleThatAttachedItMayGoWhileItRuns) {
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

TEST(FutureContinuationWithoutOwner, ResolvingCannotRunItButKeepsTheValue) {
    Events events;
    State state;
    state.setContinuation(std::make_unique<Witness>(events));
    EXPECT_THROW(state.setValue(1), std::bad_weak_ptr);
    EXPECT_EQ((Events{"destroyed"}), events);
    EXPECT_EQ(1, state.get());
}

TEST(FutureContinuationWithoutOwner, FailingCannotRunItButKeepsTheException) {
    Events events;
    State state;
    state.setContinuation(std::make_unique<Witness>(events));
    EXPECT_THROW(state.setException(failure("no")), std::bad_weak_ptr);
    EXPECT_EQ((Events{"destroyed"}), events);
    expectThrows<std::runtime_error>("no", [&] { state.get(); });
}

TEST(FutureContinuationWithoutOwner, AbandoningCannotRunIt) {
    Events events;
    State state;
    state.setContinuation(std::make_unique<Witness>(events));
    EXPECT_THROW(state.abandon(), std::bad_weak_ptr);
    EXPECT_EQ((Events{"destroyed"}), events);
}

TEST(FutureContinuationWithoutOwner, AttachingItLateCannotRunIt) {
    Events events;
    State state;
    state.setValue(1);
    EXPECT_THROW(state.setContinuation(std::make_unique<Witness>(events)), std::bad_weak_ptr);
    EXPECT_EQ((Events{"destroyed"}), events);
    EXPECT_EQ(1, state.get());
}

} // namespace connector
