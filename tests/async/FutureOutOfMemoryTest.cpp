/// Futures and promises when memory runs out. Replaces operator new.
///
/// Each test makes every allocation of one operation fail in turn. The operation either throws
/// std::bad_alloc and has changed nothing, or succeeds without the memory.
#include <connector/async/Promise.hpp>

#include "async/Texts.hpp"
#include "support/AllocationFailure.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace connector {

using test::AllocationFailure;
using test::expectThrows;
using test::failEveryAllocation;

namespace {

using Text = std::string;
using State = detail::SharedFutureState<Text>;

const Text longText(1000, 'x');

const auto nothing = [](auto&) {};

/// A promise with the future that was taken from it.
struct PromiseAndFuture {
    Promise<Text> promise;
    Future<Text> future = promise.getFuture();
};

std::optional<Future<Text>> noFuture() {
    return std::nullopt;
}

} // namespace

TEST(FutureOutOfMemory, AReadyFutureIsMadeOrNot) {
    EXPECT_EQ(2u,
              failEveryAllocation(
                  [] { return std::pair(noFuture(), longText); },
                  [](auto& subject) { subject.first = makeReadyFuture(std::move(subject.second)); },
                  [](auto& subject) { EXPECT_FALSE(subject.first.has_value()); },
                  [](auto& subject) { EXPECT_EQ(longText, subject.first->get()); }));
}

TEST(FutureOutOfMemory, AFailedFutureIsMadeOrNot) {
    const std::runtime_error exception("the copies of an exception share their text");
    EXPECT_EQ(2u, failEveryAllocation(
                      noFuture, [&](auto& future) { future = makeFailedFuture<Text>(exception); },
                      [](auto& future) { EXPECT_FALSE(future.has_value()); },
                      [](auto& future) { EXPECT_THROW(future->get(), std::runtime_error); }));
}

TEST(FutureOutOfMemory, ReadingAndMovingNeedNoMemory) {
    const auto makeFuture = [] { return makeReadyFuture(longText); };
    EXPECT_EQ(0u, failEveryAllocation(
                      makeFuture,
                      [](auto& future) {
                          Future<Text> moved = std::move(future);
                          future = std::move(moved);
                          if (future.get().size() != longText.size())
                              throw std::logic_error("another text");
                      },
                      nothing, nothing));
}

TEST(FutureOutOfMemory, AFailedThenLeavesTheFutureUnchanged) {
    struct Subject : PromiseAndFuture {
        Text seen;
    };
    const std::size_t failures =
        failEveryAllocation([] { return std::make_unique<Subject>(); },
                            [](auto& subject) {
                                subject->future.then([&seen = subject->seen](Future<Text>& ready) {
                                    seen = ready.get();
                                });
                            },
                            [](auto& subject) {
                                subject->promise.setValue(longText);
                                EXPECT_EQ(longText, subject->future.get());
                            },
                            [](auto& subject) {
                                subject->promise.setValue(longText);
                                EXPECT_EQ(longText, subject->seen);
                            });
    EXPECT_EQ(1u, failures);
}

TEST(PromiseOutOfMemory, AFailedSetValueLeavesThePromisePending) {
    const std::size_t failures =
        failEveryAllocation([] { return std::make_unique<PromiseAndFuture>(); },
                            [](auto& subject) { subject->promise.setValue(longText); },
                            [](auto& subject) {
                                subject->promise.setValue("another");
                                EXPECT_EQ("another", subject->future.get());
                            },
                            [](auto& subject) { EXPECT_EQ(longText, subject->future.get()); });
    EXPECT_EQ(2u, failures); // the copy of the text, the cell
}

TEST(PromiseOutOfMemory, AFailedSetExceptionLeavesThePromisePending) {
    const auto exception = std::make_exception_ptr(std::out_of_range("far"));
    const std::size_t failures = failEveryAllocation(
        [] { return std::make_unique<PromiseAndFuture>(); },
        [&](auto& subject) { subject->promise.setException(exception); },
        [](auto& subject) {
            subject->promise.setValue("another");
            EXPECT_EQ("another", subject->future.get());
        },
        [](auto& subject) { EXPECT_THROW(subject->future.get(), std::out_of_range); });
    EXPECT_EQ(1u, failures);
}

TEST(PromiseOutOfMemory, AFailedSetValueRunsNoContinuation) {
    struct Subject : PromiseAndFuture {
        Subject() {
            future.then([this](Future<Text>& ready) {
                ++calls;
                seen = ready.get();
            });
        }
        int calls = 0;
        Text seen;
    };
    failEveryAllocation([] { return std::make_unique<Subject>(); },
                        [](auto& subject) { subject->promise.setValue(longText); },
                        [](auto& subject) {
                            EXPECT_EQ(0, subject->calls);
                            subject->promise.setValue("another");
                            EXPECT_EQ("another", subject->seen);
                        },
                        [](auto& subject) { EXPECT_EQ(1, subject->calls); });
}

TEST(PromiseOutOfMemory, ABoolIsAlwaysStored) {
    for (const bool value : {false, true}) {
        const auto makePromise = [] { return Promise<bool>(); };
        const std::size_t failures = failEveryAllocation(
            makePromise, [&](auto& promise) { promise.setValue(value); },
            [](auto&) { ADD_FAILURE() << "setValue has thrown"; },
            [&](auto& promise) { EXPECT_EQ(value, promise.getFuture().get()); });
        EXPECT_EQ(1u, failures);
    }
}

TEST(PromiseOutOfMemory, TheDestructorFailsTheFutureWithoutMemory) {
    struct Subject {
        std::optional<Promise<Text>> promise{std::in_place};
        Future<Text> future = promise->getFuture();
    };
    const std::size_t failures = failEveryAllocation(
        [] { return std::make_unique<Subject>(); }, [](auto& subject) { subject->promise.reset(); },
        [](auto&) { ADD_FAILURE() << "a destructor has thrown"; },
        [](auto& subject) {
            expectThrows<std::runtime_error>(test::abandoned, [&] { subject->future.get(); });
        });
    EXPECT_GE(failures, 2u); // the text of the exception, the cell
}

TEST(PromiseOutOfMemory, AnAssignmentFailsThePreviousFutureWithoutMemory) {
    const std::size_t failures = failEveryAllocation(
        [] { return std::make_unique<std::pair<PromiseAndFuture, Promise<Text>>>(); },
        [](auto& subject) { subject->first.promise = std::move(subject->second); },
        [](auto&) { ADD_FAILURE() << "an assignment has thrown"; },
        [](auto& subject) {
            expectThrows<std::runtime_error>(test::abandoned, [&] { subject->first.future.get(); });
            subject->first.promise.setValue("another");
        });
    EXPECT_GE(failures, 2u);
}

TEST(PromiseOutOfMemory, APromiseIsConstructedOrNot) {
    EXPECT_EQ(1u, failEveryAllocation([] { return std::optional<Promise<Text>>(); },
                                      [](auto& promise) { promise.emplace(); },
                                      [](auto& promise) { EXPECT_FALSE(promise.has_value()); },
                                      [](auto& promise) { promise->setValue(longText); }));
}

TEST(PromiseOutOfMemory, GetFutureNeedsNoMemory) {
    EXPECT_EQ(0u, failEveryAllocation([] { return Promise<Text>(); },
                                      [](auto& promise) { return promise.getFuture(); }, nothing,
                                      nothing));
}

TEST(SharedFutureStateOutOfMemory, CancellingNeedsNoMemory) {
    EXPECT_EQ(0u, failEveryAllocation([] { return std::make_shared<State>(); },
                                      [](auto& state) { state->cancel(); }, nothing,
                                      [](auto& state) { EXPECT_FALSE(state->cancel()); }));
}

TEST(SharedFutureStateOutOfMemory, AbandoningNeedsNoMemory) {
    const std::size_t failures = failEveryAllocation(
        [] { return std::make_shared<State>(); }, [](auto& state) { state->abandon(); },
        [](auto&) { ADD_FAILURE() << "abandon has thrown"; },
        [](auto& state) {
            expectThrows<std::runtime_error>(test::abandoned, [&] { state->get(); });
        });
    EXPECT_GE(failures, 2u);
}

TEST(SharedFutureStateOutOfMemory, StatesShareThePreallocatedException) {
    const auto abandonedWithoutMemory = [] {
        auto state = std::make_shared<State>();
        const AllocationFailure failure(1);
        state->abandon();
        return state;
    };
    const auto first = abandonedWithoutMemory();
    const auto second = abandonedWithoutMemory();
    expectThrows<std::runtime_error>(test::abandoned, [&] { first->get(); });
    expectThrows<std::runtime_error>(test::abandoned, [&] { second->get(); });
}

} // namespace connector
