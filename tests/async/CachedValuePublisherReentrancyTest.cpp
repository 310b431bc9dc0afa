/// A subscriber that calls its stream from its own callbacks.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/BlockedReader.hpp"
#include "async/Stream.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace connector::reactive_streams {

using test::Events;
using test::expectThrows;
using test::IntPublisher;
using test::onAnotherThread;
using test::secondSubscription;
using test::setError;
using test::setState;
using test::Stream;
using test::SubscribedStream;

namespace {

/// Records the end of every delivery, so that nested deliveries can be recognised.
class NestingStream : public SubscribedStream {
public:
    explicit NestingStream(int capacity = 1) : SubscribedStream(capacity) {
        subscriber->inOnNext = [this](int value) {
            inOnNext(value);
            events.push_back("end of " + std::to_string(value));
        };
    }

    std::function<void(int)> inOnNext = [](int) {};
};

} // namespace

TEST(CachedValuePublisherReentrancy, ARequestFromADeliveryIsServedAfterTheDelivery) {
    NestingStream stream(-1);
    stream.offer({1, 2, 3});
    stream.inOnNext = [&](int) { stream.request(1); };
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1", "end of 1", "onNext 2", "end of 2", "onNext 3", "end of 3"}),
              stream.take());
}

TEST(CachedValuePublisherReentrancy, ALargeQueueIsDeliveredWithoutRecursion) {
    constexpr int count = 100'000; // a recursion of this depth would exhaust the stack
    SubscribedStream stream(-1);
    for (int value = 0; value < count; ++value)
        stream.offer({value});
    stream.subscriber->inOnNext = [&](int) { stream.request(1); };
    stream.request(1);
    EXPECT_EQ(std::size_t{count}, stream.take().size());
}

TEST(CachedValuePublisherReentrancy, ARequestFromAnImmediateDeliveryCounts) {
    NestingStream stream;
    stream.inOnNext = [&](int) { stream.request(1); };
    stream.request(1);
    stream.offer({1, 2});
    EXPECT_EQ((Events{"onNext 1", "end of 1", "onNext 2", "end of 2"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ACancelFromADeliveryDropsTheRemainingValues) {
    NestingStream stream(-1);
    stream.offer({1, 2, 3});
    stream.inOnNext = [&](int) { stream.cancel(); };
    stream.request(10);
    EXPECT_EQ((Events{"onNext 1", "finish", "end of 1"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ACancelFromAnImmediateDeliveryEndsTheStream) {
    NestingStream stream;
    stream.inOnNext = [&](int) { stream.cancel(); };
    stream.request(10);
    stream.offer({1, 2});
    EXPECT_EQ((Events{"onNext 1", "finish", "end of 1"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, AValueOfferedInADeliveryWithoutDemandIsQueued) {
    NestingStream stream;
    stream.offer({1});
    stream.inOnNext = [&](int value) { value == 1 ? stream.offer({2, 3}) : void(); };
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1", "end of 1"}), stream.take());
    stream.request(1);
    EXPECT_EQ((Events{"onNext 3", "end of 3"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, AValueOfferedInADeliveryFollowsQueuedValues) {
    NestingStream stream(-1);
    stream.offer({1, 2});
    stream.inOnNext = [&](int value) { value == 1 ? stream.offer({3}) : void(); };
    stream.request(10);
    EXPECT_EQ((Events{"onNext 1", "end of 1", "onNext 2", "end of 2", "onNext 3", "end of 3"}),
              stream.take());
}

// The fast path for a subscriber with demand does not check whether a delivery is running.
TEST(CachedValuePublisherReentrancy, ARequestedValueOfferedInADeliveryIsDeliveredInside) {
    NestingStream stream;
    stream.offer({1});
    stream.inOnNext = [&](int value) { value == 1 ? stream.offer({2}) : void(); };
    stream.request(2);
    EXPECT_EQ((Events{"onNext 1", "onNext 2", "end of 2", "end of 1"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, AValueOfferedInAnImmediateDeliveryIsDeliveredInside) {
    NestingStream stream;
    stream.inOnNext = [&](int value) { value < 3 ? stream.offer({value + 1}) : void(); };
    stream.request(3);
    stream.offer({1});
    EXPECT_EQ((Events{"onNext 1", "onNext 2", "onNext 3", "end of 3", "end of 2", "end of 1"}),
              stream.take());
}

TEST(CachedValuePublisherReentrancy, TheValueOfADeliveryMayBeOfferedAgain) {
    SubscribedStream stream;
    stream.offer({1});
    bool again = true;
    stream.subscriber->inOnNext = [&](int value) {
        if (std::exchange(again, false))
            stream.publisher->onNext(value);
    };
    stream.request(1);
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1", "onNext 1"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ASubscriptionFromADeliveryIsRefused) {
    SubscribedStream stream;
    stream.subscriber->inOnNext = [&](int) {
        expectThrows<std::invalid_argument>(secondSubscription, [&] { stream.subscribe(); });
    };
    stream.request(1);
    stream.offer({1});
    EXPECT_EQ((Events{"onNext 1"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ASubscriptionFromOnSubscribeIsRefused) {
    Stream stream;
    stream.subscriber->inOnSubscribe = [&] {
        expectThrows<std::invalid_argument>(secondSubscription, [&] { stream.subscribe(); });
    };
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ARequestFromOnSubscribeDeliversAtOnce) {
    Stream stream;
    stream.offer({1});
    stream.subscriber->inOnSubscribe = [&] {
        stream.request(2);
        stream.events.push_back("end of onSubscribe");
    };
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe", "onNext 1", "end of onSubscribe"}), stream.take());
    stream.offer({2});
    EXPECT_EQ((Events{"onNext 2"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ACancelFromOnSubscribeEndsTheStream) {
    Stream stream;
    stream.offer({1});
    stream.subscriber->inOnSubscribe = [&] {
        stream.cancel();
        stream.request(1);
    };
    stream.subscribe();
    stream.offer({2});
    EXPECT_EQ((Events{"onSubscribe", "finish"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, AValueOfferedInOnSubscribeIsQueued) {
    Stream stream;
    stream.offer({1});
    stream.subscriber->inOnSubscribe = [&] { stream.offer({2}); };
    stream.subscribe();
    stream.request(1);
    EXPECT_EQ((Events{"onSubscribe", "onNext 2"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ACancelFromOnSubscribeDoesNotPreventOnComplete) {
    Stream stream;
    setState(*stream.publisher, PublisherState::Completed);
    stream.subscriber->inOnSubscribe = [&] { stream.cancel(); };
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe", "onComplete"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ThePublisherIsNotLockedInOnSubscribe) {
    Stream stream;
    stream.subscriber->inOnSubscribe = [&] { onAnotherThread([&] { stream.offer({1}); }); };
    stream.subscribe();
    stream.request(1);
    EXPECT_EQ((Events{"onSubscribe", "onNext 1"}), stream.take());
}

TEST(CachedValuePublisherReentrancy, ThePublisherIsNotLockedInADelivery) {
    SubscribedStream stream;
    stream.offer({1});
    stream.subscriber->inOnNext = [&](int) { onAnotherThread([&] { stream.request(0); }); };
    stream.request(2);
    stream.offer({2}); // delivered at once
    EXPECT_EQ((Events{"onNext 1", "onNext 2"}), stream.take());
}

TEST(CachedValuePublisherReentrancy,
     ThePublisherIsNotLockedDuringOnCompleteAndOnErrorOfALateSubscriber) {
    for (const PublisherState end : {PublisherState::Completed, PublisherState::Errored}) {
        Stream stream;
        setState(*stream.publisher, end);
        setError(*stream.publisher, std::make_exception_ptr(std::runtime_error("broken")));
        const auto use = [&] { onAnotherThread([&] { stream.offer({1}); }); };
        stream.subscriber->inOnComplete = use;
        stream.subscriber->inOnError = use;
        stream.subscribe();
        EXPECT_EQ(2u, stream.take().size());
    }
}

} // namespace connector::reactive_streams
