/// The last pointer to a publisher is dropped during a call of it. Also run with the address
/// sanitizer.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/BlockedReader.hpp"
#include "async/Stream.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

namespace connector::reactive_streams {

using test::Events;
using test::IntPublisher;
using test::Stream;
using test::SubscribedStream;

namespace {

/// A watch for one value. It then cancels and drops the last pointer to its publisher, which in
/// turn is the last owner of the watch.
class OneShotWatch final : public Subscriber<int> {
public:
    static void start(std::shared_ptr<IntPublisher> newPublisher, int& result) {
        const auto watch = std::make_shared<OneShotWatch>(std::move(newPublisher), result);
        IntPublisher* const raw = watch->publisher.get();
        raw->subscribe(watch);
    }

    OneShotWatch(std::shared_ptr<IntPublisher> newPublisher, int& newResult)
        : publisher(std::move(newPublisher)), result(newResult) {}

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
        subscription = std::move(newSubscription);
        subscription.lock()->request(1);
    }
    void onComplete() override { result = -1; }
    void onNext(const int& value) override {
        result = value;
        subscription.lock()->cancel();
        publisher.reset();
    }
    void onError(std::exception_ptr) override {}

private:
    std::shared_ptr<IntPublisher> publisher;
    std::weak_ptr<Subscription> subscription;
    int& result;
};

/// Calls a function when it is destroyed.
class DestructorCall {
public:
    explicit DestructorCall(std::function<void()> newAction) : action(std::move(newAction)) {}
    ~DestructorCall() { action(); }
    DestructorCall(const DestructorCall&) = delete;
    DestructorCall& operator=(const DestructorCall&) = delete;

private:
    const std::function<void()> action;
};

} // namespace

TEST(CachedValuePublisherLifetime, AOneShotWatchEndsInsideSubscribe) {
    int result = 0;
    auto publisher = std::make_shared<IntPublisher>([] {}, 1);
    const std::weak_ptr<IntPublisher> observed = publisher;
    publisher->onNext(7);
    OneShotWatch::start(std::move(publisher), result);
    EXPECT_EQ(7, result);
    EXPECT_TRUE(observed.expired());
}

TEST(CachedValuePublisherLifetime, TheLastPointerMayBeDroppedInOnSubscribe) {
    Stream stream;
    stream.subscriber->inOnSubscribe = [&] { stream.destroy(); };
    stream.publisher.get()->subscribe(stream.subscriber);
    EXPECT_EQ((Events{"onSubscribe", "onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifetime, TheLastPointerMayBeDroppedInADeliveryFromOnSubscribe) {
    Stream stream(2);
    stream.offer({1, 2});
    stream.subscriber->inOnSubscribe = [&] { stream.request(1); };
    stream.subscriber->inOnNext = [&](int) { stream.destroy(); };
    stream.publisher.get()->subscribe(stream.subscriber);
    EXPECT_EQ((Events{"onSubscribe", "onNext 1", "onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifetime, TheLastPointerMayBeDroppedInAnOnSubscribeThatThrows) {
    Stream stream;
    stream.subscriber->inOnSubscribe = [&] {
        stream.destroy();
        throw std::runtime_error("thrown by the subscriber");
    };
    EXPECT_THROW(stream.publisher.get()->subscribe(stream.subscriber), std::runtime_error);
    EXPECT_EQ((Events{"onSubscribe", "onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifetime, TheLastPointerMayBeDroppedInOnComplete) {
    Stream stream;
    test::setState(*stream.publisher, PublisherState::Completed);
    stream.subscriber->inOnComplete = [&] { stream.destroy(); };
    stream.publisher.get()->subscribe(stream.subscriber);
    EXPECT_EQ((Events{"onSubscribe", "onComplete"}), stream.take());
}

TEST(CachedValuePublisherLifetime, TheLastPointerMayBeDroppedInADelivery) {
    SubscribedStream stream(2);
    const std::weak_ptr<IntPublisher> observed = stream.publisher;
    stream.offer({1, 2});
    stream.subscriber->inOnNext = [&](int) { stream.destroy(); };
    stream.request(2);
    EXPECT_EQ((Events{"onNext 1", "onNext 2", "onComplete", "finish"}), stream.take());
    EXPECT_TRUE(observed.expired());
}

TEST(CachedValuePublisherLifetime, CancelMayFollowAfterTheLastPointerIsDropped) {
    SubscribedStream stream;
    stream.offer({1});
    stream.subscriber->inOnNext = [&](int) {
        stream.destroy();
        stream.cancel();
    };
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifetime, TheLastPointerMayBeDroppedInFinish) {
    SubscribedStream stream;
    const std::weak_ptr<IntPublisher> observed = stream.publisher;
    stream.inFinish = [&] { stream.destroy(); };
    stream.cancel();
    EXPECT_EQ((Events{"finish"}), stream.take());
    EXPECT_TRUE(observed.expired());
}

TEST(CachedValuePublisherLifetime, TheLastPointerMayBeDroppedInAContinuation) {
    SubscribedStream stream;
    const std::weak_ptr<IntPublisher> observed = stream.publisher;
    stream.publisher->completionFuture().then([&](Future<bool>&) { stream.destroy(); });
    stream.cancel();
    EXPECT_EQ((Events{"finish"}), stream.take());
    EXPECT_TRUE(observed.expired());
}

TEST(CachedValuePublisherLifetime, TheSubscriberIsDestroyedWithoutThePublishersLock) {
    class Owning final : public Subscriber<int> {
    public:
        void onSubscribe(std::weak_ptr<Subscription>) override {}
        void onComplete() override {}
        void onNext(const int&) override {}
        void onError(std::exception_ptr) override {}

        std::shared_ptr<DestructorCall> destructorCall;
    };
    std::unique_ptr<Future<bool>> outcome;
    auto publisher = std::make_shared<IntPublisher>([] {}, 1);
    IntPublisher* const raw = publisher.get();
    auto subscriber = std::make_shared<Owning>();
    // Takes the publisher's lock through a plain pointer: weak pointers have expired by then.
    subscriber->destructorCall = std::make_shared<DestructorCall>([&] {
        test::onAnotherThread(
            [&] { outcome = std::make_unique<Future<bool>>(raw->completionFuture()); });
    });
    publisher->subscribe(std::exchange(subscriber, nullptr));
    publisher.reset();
    EXPECT_TRUE(outcome->get());
}

} // namespace connector::reactive_streams
