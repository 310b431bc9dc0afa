/// Counts the allocations of futures and publishers. Replaces operator new.
#include <connector/async/CachedValuePublisher.hpp>
#include <connector/async/Future.hpp>
#include <connector/async/Promise.hpp>

#include "support/AllocationCount.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace connector {

namespace {

/// Makes the compiler assume that `object` is used elsewhere, so that it does not remove
/// allocations.
template <typename Object>
void keep(Object& object) {
    asm volatile("" : : "g"(&object) : "memory");
}

template <typename Action>
std::size_t allocationsOf(Action action) {
    const std::size_t before = test::allocationCount();
    action();
    return test::allocationCount() - before;
}

class NullSubscriber final : public reactive_streams::Subscriber<int> {
public:
    void onSubscribe(std::weak_ptr<reactive_streams::Subscription> subscription) override {
        subscription.lock()->request(10);
    }
    void onComplete() override {}
    void onNext(const int& value) override { sum += value; }
    void onError(std::exception_ptr) override {}

    int sum = 0;
};

} // namespace

TEST(FutureAllocation, AllocationsAreCounted) {
    EXPECT_EQ(1u, allocationsOf([] {
                  const auto number = std::make_unique<int>(1);
                  keep(*number);
              }));
    EXPECT_EQ(0u, allocationsOf([] {}));
}

TEST(FutureAllocation, AReadyFutureAllocatesItsStateAndItsResult) {
    EXPECT_EQ(2u, allocationsOf([] {
                  Future<bool> future = makeReadyFuture(true);
                  keep(future);
              }));
}

TEST(FutureAllocation, AReadyFutureOfAnotherTypeAllocatesTheSame) {
    EXPECT_EQ(2u, allocationsOf([] {
                  Future<int> future = makeReadyFuture(1);
                  keep(future);
              }));
}

TEST(FutureAllocation, ALargeValueIsMoved) {
    std::string text(1000, 'x');
    EXPECT_EQ(2u, allocationsOf([&] {
                  Future<std::string> future = makeReadyFuture(std::move(text));
                  keep(future);
              }));
}

TEST(FutureAllocation, AFailedFutureAllocatesItsStateAndItsResult) {
    const std::runtime_error exception("the text of an exception is shared by its copies");
    EXPECT_EQ(2u, allocationsOf([&] {
                  Future<bool> future = makeFailedFuture<bool>(exception);
                  keep(future);
              }));
}

TEST(FutureAllocation, ReadingAllocatesNothing) {
    Future<std::string> future = makeReadyFuture(std::string(1000, 'x'));
    EXPECT_EQ(0u, allocationsOf([&] {
                  std::string text = future.get();
                  keep(text);
              }));
}

TEST(FutureAllocation, MovingAHandleAllocatesNothing) {
    Future<int> source = makeReadyFuture(1);
    EXPECT_EQ(0u, allocationsOf([&] {
                  Future<int> target = std::move(source);
                  keep(target);
              }));
}

TEST(FutureAllocation, APromiseAllocatesItsState) {
    std::optional<Promise<int>> promise;
    EXPECT_EQ(1u, allocationsOf([&] {
                  promise.emplace();
                  keep(*promise);
              }));
}

TEST(FutureAllocation, APromiseAllocatesTheResultWhenItIsResolved) {
    Promise<int> promise;
    EXPECT_EQ(0u, allocationsOf([&] {
                  Future<int> future = promise.getFuture();
                  keep(future);
              }));
    EXPECT_EQ(1u, allocationsOf([&] { promise.setValue(1); }));
}

TEST(FutureAllocation, ACancelledStateAllocatesNoResult) {
    const auto state = std::make_shared<detail::SharedFutureState<int>>();
    EXPECT_EQ(0u, allocationsOf([&] {
                  state->cancel();
                  state->setValue(1);
              }));
}

TEST(FutureAllocation, DeliveringARequestedValueAllocatesNothing) {
    const auto publisher = std::make_shared<reactive_streams::CachedValuePublisher<int>>([] {}, 1);
    const auto subscriber = std::make_shared<NullSubscriber>();
    publisher->subscribe(subscriber);
    EXPECT_EQ(0u, allocationsOf([&] {
                  publisher->onNext(1);
                  publisher->onNext(2);
              }));
    EXPECT_EQ(3, subscriber->sum);
}

} // namespace connector
