#include <connector/async/Future.hpp>

#include "async/BlockedReader.hpp"
#include "async/Internals.hpp"
#include "async/States.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace connector {

using test::abandoned;
using test::alreadyTaken;
using test::expectThrows;
using test::failure;
using test::futureNotValid;
using test::nullContinuation;
using test::onAnotherThread;
using test::State;

namespace {

/// A pending state and a handle on it.
class FutureContinuation : public testing::Test {
protected:
    const std::shared_ptr<State> state = std::make_shared<State>();
    Future<int> future{state};
    int calls = 0;
    const std::function<void(Future<int>&)> count = [this](Future<int>&) { ++calls; };
};

} // namespace

TEST_F(FutureContinuation, ItRunsWhenTheValueIsSetAndTakesIt) {
    int seen = 0;
    future.then([&](Future<int>& ready) {
        EXPECT_TRUE(ready.valid());
        seen = ready.get();
    });
    EXPECT_EQ(0, seen);
    state->setValue(7);
    EXPECT_EQ(7, seen);
}

TEST_F(FutureContinuation, ItRunsWhenAnExceptionIsSet) {
    std::string seen;
    future.then([&](Future<int>& ready) {
        try {
            ready.get();
        } catch (const std::out_of_range& thrown) {
            seen = thrown.what();
        }
    });
    state->setException(std::make_exception_ptr(std::out_of_range("far")));
    EXPECT_EQ("far", seen);
}

TEST_F(FutureContinuation, ItRunsWhenTheStateIsAbandoned) {
    future.then([&](Future<int>& ready) {
        ++calls;
        expectThrows<std::runtime_error>(abandoned, [&] { ready.get(); });
    });
    state->abandon();
    EXPECT_EQ(1, calls);
}

TEST_F(FutureContinuation, GetThrowsWhileItIsAttached) {
    future.then(count);
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
    EXPECT_TRUE(future.valid());
}

TEST_F(FutureContinuation, GetThrowsAfterItTookTheValue) {
    future.then([](Future<int>& ready) { ready.get(); });
    state->setValue(1);
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
}

TEST_F(FutureContinuation, GetReturnsAValueThatItDidNotTake) {
    future.then(count);
    state->setValue(1);
    EXPECT_EQ(1, calls);
    EXPECT_EQ(1, future.get());
}

TEST_F(FutureContinuation, GetOnTheHandleMayTakeTheValueFromIt) {
    future.then([&](Future<int>& ready) {
        ++calls;
        EXPECT_EQ(1, future.get());
        expectThrows<std::runtime_error>(alreadyTaken, [&] { ready.get(); });
    });
    state->setValue(1);
    EXPECT_EQ(1, calls);
}

TEST_F(FutureContinuation, ItRunsAtMostOnce) {
    future.then(count);
    state->setValue(1);
    state->abandon();
    EXPECT_THROW(state->setValue(2), std::runtime_error);
    EXPECT_EQ(1, calls);
}

TEST_F(FutureContinuation, ItRunsAtOnceOnAStateWithAValue) {
    state->setValue(1);
    std::thread::id ranOn;
    future.then([&](Future<int>& ready) {
        ranOn = std::this_thread::get_id();
        EXPECT_EQ(1, ready.get());
    });
    EXPECT_EQ(std::this_thread::get_id(), ranOn);
}

TEST_F(FutureContinuation, ItRunsAtOnceOnAStateWithAnException) {
    state->setException(failure("no"));
    future.then([&](Future<int>& ready) {
        ++calls;
        expectThrows<std::runtime_error>("no", [&] { ready.get(); });
    });
    EXPECT_EQ(1, calls);
}

TEST_F(FutureContinuation, ItRunsOnTheThreadThatResolves) {
    std::thread::id ranOn;
    future.then([&](Future<int>&) { ranOn = std::this_thread::get_id(); });
    const std::thread::id resolvedOn = onAnotherThread([&] {
        state->setValue(1);
        return std::this_thread::get_id();
    });
    EXPECT_EQ(resolvedOn, ranOn);
}

TEST_F(FutureContinuation, ASecondContinuationIsRefusedWhileTheFirstIsAttached) {
    int callsOfSecond = 0;
    future.then(count);
    expectThrows<std::runtime_error>(alreadyTaken,
                                     [&] { future.then([&](Future<int>&) { ++callsOfSecond; }); });
    state->setValue(1);
    EXPECT_EQ(1, calls);
    EXPECT_EQ(0, callsOfSecond);
}

TEST_F(FutureContinuation, ItIsRefusedAfterTheValueWasTaken) {
    state->setValue(1);
    future.get();
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.then(count); });
    EXPECT_EQ(0, calls);
}

TEST_F(FutureContinuation, ItIsRefusedAfterTheExceptionWasTaken) {
    state->setException(failure("no"));
    EXPECT_THROW(future.get(), std::runtime_error);
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.then(count); });
    EXPECT_EQ(0, calls);
}

TEST_F(FutureContinuation, ItIsRefusedWhileAReaderWaits) {
    test::BlockedReader reader(state);
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.then(count); });
    state->setValue(1);
    EXPECT_EQ("1", reader.outcome());
    EXPECT_EQ(0, calls);
}

TEST_F(FutureContinuation, ASecondContinuationRunsWhenTheFirstDidNotTakeTheValue) {
    future.then(count);
    state->setValue(1);
    future.then(count);
    EXPECT_EQ(2, calls);
    EXPECT_EQ(1, future.get());
}

TEST_F(FutureContinuation, ANullContinuationIsRefused) {
    expectThrows<std::invalid_argument>(nullContinuation, [&] { state->setContinuation(nullptr); });
    state->setValue(1);
    EXPECT_EQ(1, future.get());
}

TEST_F(FutureContinuation, NullIsCheckedBeforeATakenValue) {
    state->setValue(1);
    future.get();
    expectThrows<std::invalid_argument>(nullContinuation, [&] { state->setContinuation(nullptr); });
}

TEST_F(FutureContinuation, AnInvalidFutureRefusesIt) {
    expectThrows<std::runtime_error>(futureNotValid, [&] { Future<int>().then(count); });
    const Future<int> target = std::move(future);
    expectThrows<std::runtime_error>(futureNotValid, [&] { future.then(count); });
    EXPECT_EQ(0, calls);
}

TEST_F(FutureContinuation, ItNeverRunsWhenTheStateIsCancelled) {
    future.then(count);
    EXPECT_TRUE(state->cancel());
    state->setValue(1);
    state->abandon();
    EXPECT_EQ(0, calls);
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
}

TEST_F(FutureContinuation, ItNeverRunsOnACancelledState) {
    state->cancel();
    future.then(count);
    state->abandon();
    EXPECT_EQ(0, calls);
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.then(count); });
}

TEST_F(FutureContinuation, GetFutureSucceedsAgainWhileItRuns) {
    const Future<int> first = state->getFuture();
    future.then([&](Future<int>&) {
        ++calls;
        EXPECT_EQ(1, state->getFuture().get());
    });
    state->setValue(1);
    EXPECT_EQ(1, calls);
}

TEST_F(FutureContinuation, TheStateIsNotLockedWhileItRuns) {
    future.then([&](Future<int>& ready) {
        EXPECT_FALSE(onAnotherThread([&] { return state->cancel(); }));
        EXPECT_EQ(1, onAnotherThread([&] { return ready.get(); }));
        ++calls;
    });
    state->setValue(1);
    EXPECT_EQ(1, calls);
}

TEST_F(FutureContinuation, ItMayAttachAnotherContinuation) {
    future.then([&](Future<int>& ready) { ready.then(count); });
    state->setValue(1);
    EXPECT_EQ(1, calls);
}

TEST_F(FutureContinuation, ItsExceptionLeavesSetValue) {
    const auto throwing = [](Future<int>&) { throw std::logic_error("thrown by it"); };
    future.then(throwing);
    expectThrows<std::logic_error>("thrown by it", [&] { state->setValue(1); });
    EXPECT_EQ(1, future.get());
}

TEST_F(FutureContinuation, ItsExceptionLeavesSetException) {
    future.then([](Future<int>& ready) { ready.get(); });
    expectThrows<std::runtime_error>("no", [&] { state->setException(failure("no")); });
}

TEST_F(FutureContinuation, ItsExceptionLeavesThenOnAResolvedState) {
    state->setValue(1);
    expectThrows<std::logic_error>("thrown by it", [&] {
        future.then([](Future<int>&) { throw std::logic_error("thrown by it"); });
    });
    EXPECT_EQ(1, future.get());
}

TEST_F(FutureContinuation, ItsFutureIsDestroyedAfterTheCall) {
    long during = 0;
    future.then([&](Future<int>&) { during = state.use_count(); });
    state->setValue(1);
    EXPECT_EQ(3, during);
    EXPECT_EQ(2, state.use_count());
}

TEST_F(FutureContinuation, ItMayMoveItsFutureAway) {
    Future<int> kept;
    future.then([&](Future<int>& ready) { kept = std::move(ready); });
    state->setValue(1);
    EXPECT_EQ(1, kept.get());
}

TEST_F(FutureContinuation, AMoveOnlyCallableIsAccepted) {
    future.then([number = std::make_unique<int>(1), this](Future<int>&) { calls += *number; });
    state->setValue(0);
    EXPECT_EQ(1, calls);
}

TEST_F(FutureContinuation, AnLvalueCallableIsCopied) {
    const auto witness = std::make_shared<int>(0);
    const auto callable = [witness](Future<int>& ready) { *witness = ready.get(); };
    future.then(callable);
    EXPECT_EQ(3, witness.use_count());
    state->setValue(7);
    EXPECT_EQ(7, *witness);
    EXPECT_EQ(2, witness.use_count());
}

} // namespace connector
