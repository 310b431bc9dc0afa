/// Continuations of ready futures, whose states are of another class: detail::ReadyState.
#include <connector/async/Future.hpp>

#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace connector {

using test::alreadyTaken;
using test::expectThrows;

TEST(ReadyFutureContinuation, ItRunsAtOnceAndTakesTheValue) {
    Future<int> future = makeReadyFuture(7);
    int seen = 0;
    future.then([&](Future<int>& ready) { seen = ready.get(); });
    EXPECT_EQ(7, seen);
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
}

TEST(ReadyFutureContinuation, GetOnTheHandleMayTakeTheValueFromIt) {
    Future<int> future = makeReadyFuture(7);
    future.then([&](Future<int>& ready) {
        EXPECT_EQ(7, future.get());
        expectThrows<std::runtime_error>(alreadyTaken, [&] { ready.get(); });
    });
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
}

TEST(ReadyFutureContinuation, ItRunsAtOnceAndTakesTheException) {
    std::string seen;
    makeFailedFuture<int>(std::out_of_range("far")).then([&](Future<int>& failed) {
        try {
            failed.get();
        } catch (const std::out_of_range& thrown) {
            seen = thrown.what();
        }
    });
    EXPECT_EQ("far", seen);
}

TEST(ReadyFutureContinuation, ASecondContinuationRunsWhenTheFirstDidNotTakeTheValue) {
    Future<int> future = makeReadyFuture(7);
    int seen = 0;
    future.then([](Future<int>&) {});
    future.then(
        [&](Future<int>& ready) { ready.then([&](Future<int>& inner) { seen = inner.get(); }); });
    EXPECT_EQ(7, seen);
}

TEST(ReadyFutureContinuation, ItMayKeepItsFutureAfterTheHandleIsDestroyed) {
    Future<std::string> kept;
    makeReadyFuture<std::string>("text").then(
        [&](Future<std::string>& ready) { kept = std::move(ready); });
    EXPECT_EQ("text", kept.get());
}

TEST(ReadyFutureContinuation, ItsExceptionLeavesThenAndTheValueIsKept) {
    Future<int> future = makeReadyFuture(7);
    expectThrows<std::runtime_error>(
        "mine", [&] { future.then([](Future<int>&) { throw std::runtime_error("mine"); }); });
    EXPECT_EQ(7, future.get());
}

} // namespace connector
