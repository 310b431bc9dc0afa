#include <connector/async/Promise.hpp>

#include "async/Internals.hpp"
#include "async/States.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace connector {

using test::abandoned;
using test::alreadyResolved;
using test::expectThrows;
using test::failure;
using test::futureAlreadyReturned;
using test::nullException;
using test::promiseNotValid;

namespace {

static_assert(std::is_default_constructible_v<Promise<int>>);
static_assert(std::is_nothrow_move_constructible_v<Promise<int>>);
static_assert(std::is_nothrow_move_assignable_v<Promise<int>>);
static_assert(!std::is_copy_constructible_v<Promise<int>>);
static_assert(!std::is_copy_assignable_v<Promise<int>>);

struct WithoutDefault {
    explicit WithoutDefault(int newNumber) : number(newNumber) {}
    int number;
};

} // namespace

TEST(Promise, ItsValueReachesItsFuture) {
    Promise<int> promise;
    Future<int> future = promise.getFuture();
    EXPECT_TRUE(future.valid());
    promise.setValue(5);
    EXPECT_EQ(5, future.get());
}

TEST(Promise, ItsExceptionReachesItsFuture) {
    Promise<int> promise;
    Future<int> future = promise.getFuture();
    promise.setException(std::make_exception_ptr(std::out_of_range("far")));
    expectThrows<std::out_of_range>("far", [&] { future.get(); });
}

TEST(Promise, TheFutureCanBeRequestedAfterTheValue) {
    Promise<int> promise;
    promise.setValue(5);
    EXPECT_EQ(5, promise.getFuture().get());
}

TEST(Promise, TypesOfEveryKindAreAccepted) {
    Promise<std::unique_ptr<int>> onlyMoves;
    onlyMoves.setValue(std::make_unique<int>(1));
    EXPECT_EQ(1, *onlyMoves.getFuture().get());

    Promise<std::string> text;
    text.setValue("text");
    EXPECT_EQ("text", text.getFuture().get());

    Promise<WithoutDefault> withoutDefault;
    withoutDefault.setValue(WithoutDefault(2));
    EXPECT_EQ(2, withoutDefault.getFuture().get().number);

    Promise<bool> instantiatedInTheLibrary;
    instantiatedInTheLibrary.setValue(true);
    EXPECT_TRUE(instantiatedInTheLibrary.getFuture().get());
}

TEST(Promise, ASecondResolutionIsRefused) {
    Promise<int> promise;
    promise.setValue(1);
    expectThrows<std::runtime_error>(alreadyResolved, [&] { promise.setValue(2); });
    expectThrows<std::runtime_error>(alreadyResolved, [&] { promise.setException(failure("no")); });
    EXPECT_EQ(1, promise.getFuture().get());
}

TEST(Promise, ANullExceptionIsRefused) {
    Promise<int> promise;
    expectThrows<std::invalid_argument>(nullException, [&] { promise.setException(nullptr); });
    promise.setValue(1);
    EXPECT_EQ(1, promise.getFuture().get());
}

TEST(Promise, ASecondFutureIsRefused) {
    Promise<int> promise;
    const Future<int> future = promise.getFuture();
    expectThrows<std::runtime_error>(futureAlreadyReturned, [&] { return promise.getFuture(); });
}

TEST(Promise, ASecondFutureIsRefusedAfterTheFirstIsDestroyed) {
    Promise<int> promise;
    std::ignore = promise.getFuture();
    expectThrows<std::runtime_error>(futureAlreadyReturned, [&] { return promise.getFuture(); });
}

TEST(Promise, DestroyingAPendingPromiseFailsItsFuture) {
    Future<int> future;
    {
        Promise<int> promise;
        future = promise.getFuture();
    }
    expectThrows<std::runtime_error>(abandoned, [&] { future.get(); });
}

TEST(Promise, DestroyingAResolvedPromiseKeepsTheValue) {
    Future<int> future;
    {
        Promise<int> promise;
        future = promise.getFuture();
        promise.setValue(1);
    }
    EXPECT_EQ(1, future.get());
}

TEST(Promise, DestroyingAFailedPromiseKeepsTheException) {
    Future<int> future;
    {
        Promise<int> promise;
        future = promise.getFuture();
        promise.setException(failure("no"));
    }
    expectThrows<std::runtime_error>("no", [&] { future.get(); });
}

TEST(Promise, AMovedFromPromiseIsInvalid) {
    Promise<int> source;
    const Promise<int> target = std::move(source);
    expectThrows<std::runtime_error>(promiseNotValid, [&] { source.setValue(1); });
    expectThrows<std::runtime_error>(promiseNotValid, [&] { source.setException(failure("no")); });
    expectThrows<std::runtime_error>(promiseNotValid, [&] { return source.getFuture(); });
}

TEST(Promise, ValidityIsCheckedBeforeANullException) {
    Promise<int> source;
    const Promise<int> target = std::move(source);
    expectThrows<std::runtime_error>(promiseNotValid, [&] { source.setException(nullptr); });
}

TEST(Promise, TheResultMovesWithIt) {
    Promise<int> source;
    Future<int> future = source.getFuture();
    Promise<int> target = std::move(source);
    target.setValue(1);
    EXPECT_EQ(1, future.get());
}

TEST(Promise, DestroyingAMovedFromPromiseAbandonsNothing) {
    Promise<int> target;
    Future<int> future;
    {
        Promise<int> source;
        future = source.getFuture();
        target = std::move(source);
    }
    target.setValue(1);
    EXPECT_EQ(1, future.get());
}

TEST(Promise, APromiseIsInvalidAfterItWasMoveAssignedFrom) {
    Promise<int> source;
    Promise<int> target;
    target = std::move(source);
    expectThrows<std::runtime_error>(promiseNotValid, [&] { source.setValue(1); });
    target.setValue(1);
    EXPECT_EQ(1, target.getFuture().get());
}

TEST(Promise, AssignmentAbandonsThePreviousResult) {
    Promise<int> promise;
    Future<int> future = promise.getFuture();
    promise = Promise<int>();
    expectThrows<std::runtime_error>(abandoned, [&] { future.get(); });
}

TEST(Promise, AssignmentKeepsAPreviousValue) {
    Promise<int> promise;
    Future<int> future = promise.getFuture();
    promise.setValue(1);
    promise = Promise<int>();
    EXPECT_EQ(1, future.get());
}

TEST(Promise, AssigningAnInvalidPromiseInvalidates) {
    Promise<int> source;
    const Promise<int> elsewhere = std::move(source);
    Promise<int> target;
    target = std::move(source);
    expectThrows<std::runtime_error>(promiseNotValid, [&] { target.setValue(1); });
}

TEST(Promise, AssigningToItselfChangesNothing) {
    Promise<int> promise;
    Future<int> future = promise.getFuture();
    Promise<int>& itself = promise;
    promise = std::move(itself);
    promise.setValue(1);
    EXPECT_EQ(1, future.get());
}

TEST(Promise, AnInvalidPromiseCanBeAssignedTo) {
    Promise<int> promise;
    const Promise<int> elsewhere = std::move(promise);
    promise = Promise<int>();
    promise.setValue(1);
    EXPECT_EQ(1, promise.getFuture().get());
}

TEST(Promise, ItMayBeDestroyedByItsOwnContinuation) {
    auto promise = std::make_unique<Promise<int>>();
    int seen = 0;
    promise->getFuture().then([&](Future<int>& future) {
        promise.reset();
        seen = future.get();
    });
    promise->setValue(1);
    EXPECT_EQ(1, seen);
}

TEST(Promise, AContinuationMayDestroyTheTargetOfAnAssignment) {
    auto target = std::make_unique<Promise<int>>();
    Promise<int> source;
    Future<int> future = source.getFuture();
    target->getFuture().then([&](Future<int>&) { target.reset(); });
    Promise<int>& alias = *target;
    alias = std::move(source);
    expectThrows<std::runtime_error>(abandoned, [&] { future.get(); });
}

TEST(Promise, AContinuationMayDestroyTheSourceOfAnAssignment) {
    Promise<int> target;
    auto source = std::make_unique<Promise<int>>();
    Future<int> future = source->getFuture();
    target.getFuture().then([&](Future<int>&) { source.reset(); });
    target = std::move(*source);
    target.setValue(1);
    EXPECT_EQ(1, future.get());
}

TEST(PromiseDeathTest, AContinuationThatThrowsInTheDestructorEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            Promise<int> promise;
            promise.getFuture().then([](Future<int>&) { throw std::runtime_error("thrown late"); });
        },
        "thrown late");
}

TEST(PromiseDeathTest, AContinuationThatThrowsInTheAssignmentEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            Promise<int> promise;
            promise.getFuture().then([](Future<int>&) { throw std::runtime_error("thrown late"); });
            promise = Promise<int>();
        },
        "thrown late");
}

} // namespace connector
