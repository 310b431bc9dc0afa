#include <connector/async/SharedFutureState.hpp>

#include "async/BlockedReader.hpp"
#include "async/Internals.hpp"
#include "async/States.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>

namespace connector::detail {

using test::abandoned;
using test::alreadyResolved;
using test::alreadyTaken;
using test::BlockedReader;
using test::cancelled;
using test::cancelledState;
using test::expectThrows;
using test::failedState;
using test::failure;
using test::futureAlreadyReturned;
using test::nullException;
using test::pendingState;
using test::State;
using test::stateWith;

namespace {

static_assert(std::is_same_v<std::underlying_type_t<FutureStatus>, std::uint32_t>);
static_assert(static_cast<std::uint32_t>(FutureStatus::Pending) == 0);
static_assert(static_cast<std::uint32_t>(FutureStatus::Value) == 1);
static_assert(static_cast<std::uint32_t>(FutureStatus::Exception) == 2);
static_assert(static_cast<std::uint32_t>(FutureStatus::Cancelled) == 3);

static_assert(std::is_default_constructible_v<State>);
static_assert(!std::is_copy_constructible_v<State> && !std::is_move_constructible_v<State>);
static_assert(!std::is_copy_assignable_v<State> && !std::is_move_assignable_v<State>);
static_assert(std::is_base_of_v<std::enable_shared_from_this<State>, State>);
static_assert(std::is_same_v<decltype(std::declval<State&>().cancel()), bool>);

static_assert(std::is_abstract_v<FutureContinuation<int>>);
static_assert(std::has_virtual_destructor_v<FutureContinuation<int>>);
static_assert(std::is_same_v<decltype(&FutureContinuation<int>::invoke),
                             void (FutureContinuation<int>::*)(Future<int>&)>);

} // namespace

TEST(SharedFutureState, AValueIsReadOnce) {
    const auto state = stateWith(7);
    EXPECT_EQ(7, state->get());
    expectThrows<std::runtime_error>(alreadyTaken, [&] { state->get(); });
}

TEST(SharedFutureState, AnExceptionIsReadOnce) {
    const auto state = failedState("no");
    expectThrows<std::runtime_error>("no", [&] { state->get(); });
    expectThrows<std::runtime_error>(alreadyTaken, [&] { state->get(); });
}

TEST(SharedFutureState, TheStoredExceptionObjectItselfIsThrown) {
    const auto state = pendingState();
    const std::exception_ptr exception = failure("no");
    state->setException(exception);
    try {
        state->get();
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error&) {
        EXPECT_EQ(exception, std::current_exception());
    }
}

TEST(SharedFutureState, ASecondReaderOfAPendingStateDoesNotWait) {
    const auto state = pendingState();
    BlockedReader first(state);
    expectThrows<std::runtime_error>(alreadyTaken, [&] { state->get(); });
    state->setValue(1);
    EXPECT_EQ("1", first.outcome());
}

TEST(SharedFutureState, AValueIsFinal) {
    const auto state = stateWith(1);
    expectThrows<std::runtime_error>(alreadyResolved, [&] { state->setValue(2); });
    expectThrows<std::runtime_error>(alreadyResolved, [&] { state->setException(failure("no")); });
    EXPECT_EQ(1, state->get());
}

TEST(SharedFutureState, AnExceptionIsFinal) {
    const auto state = failedState("first");
    expectThrows<std::runtime_error>(alreadyResolved, [&] { state->setValue(2); });
    expectThrows<std::runtime_error>(alreadyResolved, [&] { state->setException(failure("no")); });
    expectThrows<std::runtime_error>("first", [&] { state->get(); });
}

TEST(SharedFutureState, ReadingAValueDoesNotAllowAnotherOne) {
    const auto state = stateWith(1);
    state->get();
    expectThrows<std::runtime_error>(alreadyResolved, [&] { state->setValue(2); });
}

TEST(SharedFutureState, TheLockIsReleasedWhenSetValueThrows) {
    const auto state = stateWith(1);
    EXPECT_THROW(state->setValue(2), std::runtime_error);
    EXPECT_EQ(1, test::onAnotherThread([&] { return state->get(); }));
}

TEST(SharedFutureState, ANullExceptionIsRefused) {
    const auto state = pendingState();
    expectThrows<std::invalid_argument>(nullException, [&] { state->setException(nullptr); });
    state->setValue(3);
    EXPECT_EQ(3, state->get());
}

TEST(SharedFutureState, ANullExceptionIsRefusedOnAResolvedState) {
    expectThrows<std::invalid_argument>(nullException, [] { stateWith(1)->setException(nullptr); });
}

TEST(SharedFutureState, GetFutureSucceedsOnce) {
    const auto state = stateWith(5);
    Future<int> future = state->getFuture();
    EXPECT_TRUE(future.valid());
    expectThrows<std::runtime_error>(futureAlreadyReturned, [&] { return state->getFuture(); });
    EXPECT_EQ(5, future.get());
}

TEST(SharedFutureState, GetFutureSucceedsAfterTheValueWasTaken) {
    const auto state = stateWith(5);
    state->get();
    Future<int> future = state->getFuture();
    EXPECT_TRUE(future.valid());
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
}

TEST(SharedFutureState, TheFutureKeepsTheStateAlive) {
    auto state = stateWith(5);
    Future<int> future = state->getFuture();
    state.reset();
    EXPECT_EQ(5, future.get());
}

TEST(SharedFutureState, GetFutureThrowsWithoutASharedPointer) {
    State state;
    EXPECT_THROW(std::ignore = state.getFuture(), std::bad_weak_ptr);
}

TEST(SharedFutureState, AFailedGetFutureCounts) {
    State state;
    EXPECT_THROW(std::ignore = state.getFuture(), std::bad_weak_ptr);
    expectThrows<std::runtime_error>(futureAlreadyReturned, [&] { return state.getFuture(); });
}

TEST(SharedFutureState, AStateWithoutASharedPointerIsResolvedAndRead) {
    State state;
    state.setValue(4);
    EXPECT_EQ(4, state.get());
}

TEST(SharedFutureState, AbandoningAPendingStateFailsIt) {
    const auto state = pendingState();
    state->abandon();
    expectThrows<std::runtime_error>(abandoned, [&] { state->get(); });
    expectThrows<std::runtime_error>(alreadyResolved, [&] { state->setValue(1); });
}

TEST(SharedFutureState, AbandoningKeepsAValue) {
    const auto state = stateWith(1);
    state->abandon();
    EXPECT_EQ(1, state->get());
}

TEST(SharedFutureState, AbandoningKeepsAnException) {
    const auto state = failedState("first");
    state->abandon();
    expectThrows<std::runtime_error>("first", [&] { state->get(); });
}

TEST(SharedFutureState, AbandoningKeepsACancellation) {
    const auto state = cancelledState();
    state->abandon();
    expectThrows<std::runtime_error>(cancelled, [&] { state->get(); });
}

TEST(SharedFutureState, TheValueIsDestroyedWithTheState) {
    const auto value = std::make_shared<int>(1);
    auto state = std::make_shared<SharedFutureState<std::shared_ptr<int>>>();
    state->setValue(value);
    EXPECT_EQ(2, value.use_count());
    state.reset();
    EXPECT_EQ(1, value.use_count());
}

TEST(SharedFutureState, TheExceptionIsDestroyedWithTheState) {
    struct Failure {
        std::shared_ptr<int> witness;
    };
    const auto witness = std::make_shared<int>(1);
    auto state = pendingState();
    state->setException(std::make_exception_ptr(Failure{witness}));
    EXPECT_EQ(2, witness.use_count());
    state.reset();
    EXPECT_EQ(1, witness.use_count());
}

TEST(SharedFutureState, GetMovesTheValueOut) {
    const auto value = std::make_shared<int>(1);
    const auto state = std::make_shared<SharedFutureState<std::shared_ptr<int>>>();
    state->setValue(value);
    const std::shared_ptr<int> taken = state->get();
    EXPECT_EQ(value, taken);
    EXPECT_EQ(2, value.use_count());
}

} // namespace connector::detail
