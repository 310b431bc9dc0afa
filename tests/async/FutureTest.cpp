#include <connector/async/Future.hpp>

#include "async/Internals.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace connector {

using test::alreadyTaken;
using test::expectThrows;
using test::futureNotValid;
using test::State;

namespace {

static_assert(std::is_nothrow_default_constructible_v<Future<int>>);
static_assert(std::is_nothrow_move_constructible_v<Future<int>>);
static_assert(std::is_nothrow_move_assignable_v<Future<int>>);
static_assert(!std::is_copy_constructible_v<Future<int>>);
static_assert(!std::is_copy_assignable_v<Future<int>>);
static_assert(std::is_constructible_v<Future<int>, std::shared_ptr<State>>);
static_assert(std::is_same_v<decltype(std::declval<const Future<int>&>().valid()), bool>);
static_assert(std::is_same_v<decltype(makeReadyFuture(true)), Future<bool>>);
static_assert(std::is_same_v<decltype(makeReadyFuture<std::string>("text")), Future<std::string>>);

struct WithoutDefault {
    explicit WithoutDefault(int newNumber) : number(newNumber) {}
    int number;
};
static_assert(!std::is_default_constructible_v<WithoutDefault>);

/// Not copyable, although its bytes could be copied.
struct TrivialMoveOnly {
    explicit TrivialMoveOnly(int newNumber) : number(newNumber) {}
    TrivialMoveOnly(TrivialMoveOnly&&) = default;
    TrivialMoveOnly& operator=(TrivialMoveOnly&&) = default;
    int number;
};

struct CopyOnly {
    explicit CopyOnly(int newNumber) : number(newNumber) {}
    CopyOnly(const CopyOnly& other) : number(other.number) {}
    int number;
};

/// An exception that is not derived from std::exception.
struct OwnFailure {
    int code;
};

} // namespace

TEST(Future, ADefaultConstructedFutureIsInvalid) {
    Future<int> future;
    EXPECT_FALSE(future.valid());
    expectThrows<std::runtime_error>(futureNotValid, [&] { future.get(); });
}

TEST(Future, AFutureOnANullStateIsInvalid) {
    Future<int> future(std::shared_ptr<State>{});
    EXPECT_FALSE(future.valid());
    expectThrows<std::runtime_error>(futureNotValid, [&] { future.get(); });
}

TEST(Future, AFutureOnAStateIsValid) {
    const auto state = std::make_shared<State>();
    const Future<int> future(state);
    EXPECT_TRUE(future.valid());
}

TEST(Future, AMovedFromFutureIsInvalidAndItsStateUnchanged) {
    Future<int> source = makeReadyFuture(1);
    Future<int> target = std::move(source);
    EXPECT_FALSE(source.valid());
    expectThrows<std::runtime_error>(futureNotValid, [&] { source.get(); });
    EXPECT_TRUE(target.valid());
    EXPECT_EQ(1, target.get());
}

TEST(Future, MovingAnInvalidFutureGivesAnInvalidFuture) {
    Future<int> source;
    const Future<int> target = std::move(source);
    EXPECT_FALSE(target.valid());
}

TEST(Future, AFutureIsInvalidAfterItWasMoveAssignedFrom) {
    Future<int> source = makeReadyFuture(1);
    Future<int> target = makeReadyFuture(2);
    target = std::move(source);
    EXPECT_FALSE(source.valid());
    expectThrows<std::runtime_error>(futureNotValid, [&] { source.get(); });
    EXPECT_TRUE(target.valid());
    EXPECT_EQ(1, target.get());
}

TEST(Future, AssigningAnInvalidFutureInvalidates) {
    Future<int> target = makeReadyFuture(2);
    target = Future<int>();
    EXPECT_FALSE(target.valid());
    expectThrows<std::runtime_error>(futureNotValid, [&] { target.get(); });
}

TEST(Future, AssigningReleasesThePreviousState) {
    const auto state = std::make_shared<State>();
    Future<int> target(state);
    target = makeReadyFuture(1);
    EXPECT_EQ(1, state.use_count());
}

TEST(Future, AssigningToItselfChangesNothing) {
    Future<int> future = makeReadyFuture(1);
    Future<int>& itself = future;
    future = std::move(itself);
    EXPECT_TRUE(future.valid());
    EXPECT_EQ(1, future.get());
}

TEST(Future, AnInvalidFutureCanBeAssignedTo) {
    Future<int> future;
    future = makeReadyFuture(1);
    EXPECT_TRUE(future.valid());
    EXPECT_EQ(1, future.get());
}

TEST(Future, DestroyingItReleasesTheState) {
    const auto state = std::make_shared<State>();
    {
        const Future<int> future(state);
        EXPECT_EQ(2, state.use_count());
    }
    EXPECT_EQ(1, state.use_count());
}

TEST(Future, DestroyingItLeavesTheStatePending) {
    const auto state = std::make_shared<State>();
    { const Future<int> future = state->getFuture(); }
    state->setValue(1);
    EXPECT_EQ(1, state->get());
}

TEST(Future, ItStaysValidAfterGet) {
    Future<int> future = makeReadyFuture(1);
    future.get();
    EXPECT_TRUE(future.valid());
}

TEST(Future, TwoFuturesOnOneStateShareItsResult) {
    const auto state = std::make_shared<State>();
    Future<int> first(state);
    Future<int> second(state);
    state->setValue(1);
    EXPECT_EQ(1, first.get());
    expectThrows<std::runtime_error>(alreadyTaken, [&] { second.get(); });
}

TEST(MakeReadyFuture, TheValueIsReadOnce) {
    Future<int> future = makeReadyFuture(42);
    EXPECT_TRUE(future.valid());
    EXPECT_EQ(42, future.get());
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
}

TEST(MakeReadyFuture, TheTypesOfTheLibraryAreInstantiated) {
    EXPECT_TRUE(makeReadyFuture(true).get());
    EXPECT_FALSE(makeReadyFuture(false).get());
    const std::set<std::string> keys{"a", "b"};
    EXPECT_EQ(keys, makeReadyFuture(keys).get());
}

TEST(MakeReadyFuture, ABoolIsReadOnce) {
    Future<bool> future = makeReadyFuture(true);
    future.get();
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
}

TEST(MakeReadyFuture, AMoveOnlyTypeIsMoved) {
    auto value = std::make_unique<int>(3);
    const int* const address = value.get();
    EXPECT_EQ(address, makeReadyFuture(std::move(value)).get().get());
}

TEST(MakeReadyFuture, ATrivialMoveOnlyTypeIsMoved) {
    EXPECT_EQ(3, makeReadyFuture(TrivialMoveOnly(3)).get().number);
}

TEST(MakeReadyFuture, ACopyOnlyTypeIsCopied) {
    EXPECT_EQ(3, makeReadyFuture(CopyOnly(3)).get().number);
}

TEST(MakeReadyFuture, ATypeWithoutDefaultConstructorIsAccepted) {
    EXPECT_EQ(3, makeReadyFuture(WithoutDefault(3)).get().number);
}

TEST(MakeReadyFuture, AStringLiteralIsConvertedToTheNamedType) {
    EXPECT_EQ("text", makeReadyFuture<std::string>("text").get());
}

TEST(MakeReadyFuture, AnExceptionPointerIsAnOrdinaryValue) {
    const auto exception = std::make_exception_ptr(OwnFailure{1});
    EXPECT_EQ(exception, makeReadyFuture(exception).get());
}

TEST(MakeFailedFuture, TheExceptionIsThrownWithItsTypeAndText) {
    Future<int> future = makeFailedFuture<int>(std::runtime_error("no such thing"));
    EXPECT_TRUE(future.valid());
    expectThrows<std::runtime_error>("no such thing", [&] { future.get(); });
    expectThrows<std::runtime_error>(alreadyTaken, [&] { future.get(); });
}

TEST(MakeFailedFuture, OtherTypesAreKept) {
    expectThrows<std::invalid_argument>(
        "wrong", [] { makeFailedFuture<bool>(std::invalid_argument("wrong")).get(); });
    expectThrows<std::out_of_range>(
        "far", [] { makeFailedFuture<std::string>(std::out_of_range("far")).get(); });
}

TEST(MakeFailedFuture, AnyClassIsAccepted) {
    try {
        makeFailedFuture<std::unique_ptr<int>>(OwnFailure{17}).get();
        FAIL() << "nothing was thrown";
    } catch (const OwnFailure& thrown) {
        EXPECT_EQ(17, thrown.code);
    }
}

TEST(MakeFailedFuture, TheExceptionIsACopy) {
    const auto witness = std::make_shared<int>(1);
    struct Failure {
        std::shared_ptr<int> witness;
    };
    const Failure failure{witness};
    const Future<int> future = makeFailedFuture<int>(failure);
    EXPECT_EQ(witness, failure.witness);
    EXPECT_EQ(3, witness.use_count());
}

} // namespace connector
