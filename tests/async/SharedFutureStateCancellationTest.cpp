/// Cancelled states, and statuses that only foreign code can write.
#include <connector/async/SharedFutureState.hpp>

#include "async/Internals.hpp"
#include "async/States.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <stdexcept>

namespace connector::detail {

using test::alreadyResolved;
using test::alreadyTaken;
using test::cancelled;
using test::cancelledState;
using test::expectThrows;
using test::failedState;
using test::failure;
using test::invalidStatus;
using test::pendingState;
using test::setStatus;
using test::State;
using test::stateWith;

namespace {

constexpr auto outsideOfTheEnumeration = static_cast<FutureStatus>(4);

} // namespace

TEST(SharedFutureStateCancellation, ReadingACancelledStateThrows) {
    const auto state = pendingState();
    EXPECT_TRUE(state->cancel());
    expectThrows<std::runtime_error>(cancelled, [&] { state->get(); });
    expectThrows<std::runtime_error>(alreadyTaken, [&] { state->get(); });
}

TEST(SharedFutureStateCancellation, CancellingAgainChangesNothing) {
    const auto state = cancelledState();
    EXPECT_FALSE(state->cancel());
    expectThrows<std::runtime_error>(cancelled, [&] { state->get(); });
}

TEST(SharedFutureStateCancellation, AValueCannotBeCancelled) {
    const auto state = stateWith(1);
    EXPECT_FALSE(state->cancel());
    EXPECT_EQ(1, state->get());
}

TEST(SharedFutureStateCancellation, AnExceptionCannotBeCancelled) {
    const auto state = failedState("first");
    EXPECT_FALSE(state->cancel());
    expectThrows<std::runtime_error>("first", [&] { state->get(); });
}

TEST(SharedFutureStateCancellation, ACancelledStateDropsAValueSilently) {
    const auto state = cancelledState();
    state->setValue(1);
    state->setValue(2);
    expectThrows<std::runtime_error>(cancelled, [&] { state->get(); });
}

TEST(SharedFutureStateCancellation, ACancelledStateDropsAnExceptionSilently) {
    const auto state = cancelledState();
    state->setException(failure("no"));
    expectThrows<std::runtime_error>(cancelled, [&] { state->get(); });
}

TEST(SharedFutureStateCancellation, ACancelledStateReturnsItsFuture) {
    Future<int> future = cancelledState()->getFuture();
    EXPECT_TRUE(future.valid());
    expectThrows<std::runtime_error>(cancelled, [&] { future.get(); });
}

// Only foreign code can write such a status.
TEST(SharedFutureStateCancellation, AnUnknownStatusCannotBeRead) {
    const auto state = pendingState();
    setStatus(*state, outsideOfTheEnumeration);
    expectThrows<std::runtime_error>(invalidStatus, [&] { state->get(); });
    expectThrows<std::runtime_error>(alreadyTaken, [&] { state->get(); });
}

TEST(SharedFutureStateCancellation, AnUnknownStatusCountsAsResolved) {
    const auto state = pendingState();
    setStatus(*state, outsideOfTheEnumeration);
    expectThrows<std::runtime_error>(alreadyResolved, [&] { state->setValue(1); });
    expectThrows<std::runtime_error>(alreadyResolved, [&] { state->setException(failure("no")); });
    EXPECT_FALSE(state->cancel());
    state->abandon();
    expectThrows<std::runtime_error>(invalidStatus, [&] { state->get(); });
}

TEST(SharedFutureStateCancellation, ACancellationWrittenByForeignCodeCounts) {
    const auto state = pendingState();
    setStatus(*state, FutureStatus::Cancelled);
    state->setValue(1);
    EXPECT_FALSE(state->cancel());
    expectThrows<std::runtime_error>(cancelled, [&] { state->get(); });
}

} // namespace connector::detail
