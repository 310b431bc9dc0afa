/// The one subscriber: how it is attached, what it is called with, how long it is kept.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/Stream.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace connector::reactive_streams {

using test::Events;
using test::expectThrows;
using test::IntPublisher;
using test::nullSubscriber;
using test::RecordingSubscriber;
using test::secondSubscription;
using test::setError;
using test::setState;
using test::Stream;
using test::SubscribedStream;

namespace {

void expectRefused(Stream& stream) {
    Events events;
    const auto second = std::make_shared<RecordingSubscriber>(events);
    expectThrows<std::invalid_argument>(secondSubscription,
                                        [&] { stream.publisher->subscribe(second); });
    EXPECT_EQ(Events(), events);
    EXPECT_EQ(1, second.use_count());
}

} // namespace

TEST(CachedValuePublisherSubscription, TheFirstCallIsOnSubscribe) {
    Stream stream;
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe"}), stream.take());
    EXPECT_FALSE(stream.subscriber->subscription.expired());
}

TEST(CachedValuePublisherSubscription, EarlierValuesAreDeliveredOnRequest) {
    Stream stream(2);
    stream.offer({1, 2, 3});
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe"}), stream.take());
    stream.request(1);
    EXPECT_EQ((Events{"onNext 2"}), stream.take());
    stream.request(1);
    EXPECT_EQ((Events{"onNext 3"}), stream.take());
}

TEST(CachedValuePublisherSubscription, TheNewestEarlierValueIsDelivered) {
    Stream stream;
    stream.offer({1, 2, 3});
    stream.subscribe();
    stream.request(1);
    EXPECT_EQ((Events{"onSubscribe", "onNext 3"}), stream.take());
}

TEST(CachedValuePublisherSubscription, ASecondSubscriberIsRefusedAndTheFirstKept) {
    SubscribedStream stream;
    expectRefused(stream);
    stream.offer({1});
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1"}), stream.take());
}

TEST(CachedValuePublisherSubscription, TheSameSubscriberIsRefusedAgain) {
    SubscribedStream stream;
    expectThrows<std::invalid_argument>(secondSubscription, [&] { stream.subscribe(); });
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherSubscription, ASecondSubscriberIsRefusedAfterTheFirstCancelled) {
    SubscribedStream stream;
    stream.cancel();
    expectRefused(stream);
}

TEST(CachedValuePublisherSubscription, ASecondSubscriberIsRefusedAfterTheFirstThrew) {
    Stream stream;
    stream.subscriber->inOnSubscribe = [] { throw std::runtime_error("no"); };
    EXPECT_THROW(stream.subscribe(), std::runtime_error);
    expectRefused(stream);
}

TEST(CachedValuePublisherSubscription, ASecondSubscriberIsRefusedWhileThePublisherOwnsTheFirst) {
    SubscribedStream stream;
    stream.subscriber.reset();
    expectRefused(stream);
}

TEST(CachedValuePublisherSubscription, ASecondSubscriberIsRefusedAfterTheEnd) {
    for (const PublisherState state : {PublisherState::Completed, PublisherState::Errored}) {
        SubscribedStream stream;
        setState(*stream.publisher, state);
        expectRefused(stream);
    }
}

TEST(CachedValuePublisherSubscription, ANullSubscriberIsRefusedAndAnotherAccepted) {
    Stream stream;
    expectThrows<std::invalid_argument>(nullSubscriber,
                                        [&] { stream.publisher->subscribe(nullptr); });
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe"}), stream.take());
}

TEST(CachedValuePublisherSubscription, NullIsCheckedBeforeASecondSubscriber) {
    SubscribedStream stream;
    expectThrows<std::invalid_argument>(nullSubscriber,
                                        [&] { stream.publisher->subscribe(nullptr); });
}

TEST(CachedValuePublisherSubscription, APublisherOnTheStackRefusesSubscribers) {
    Events events;
    const auto subscriber = std::make_shared<RecordingSubscriber>(events);
    IntPublisher publisher([] {}, 1);
    EXPECT_THROW(publisher.subscribe(subscriber), std::bad_weak_ptr);
    EXPECT_THROW(publisher.subscribe(subscriber), std::bad_weak_ptr);
    EXPECT_EQ(Events(), events);
    EXPECT_EQ(1, subscriber.use_count());
}

TEST(CachedValuePublisherSubscription, ThePublisherKeepsItsSubscriberUntilItIsDestroyed) {
    SubscribedStream stream;
    const std::weak_ptr<RecordingSubscriber> subscriber = stream.subscriber;
    stream.subscriber.reset();
    EXPECT_FALSE(subscriber.expired());
    stream.destroy();
    EXPECT_TRUE(subscriber.expired());
}

TEST(CachedValuePublisherSubscription, ACancellationDoesNotReleaseTheSubscriber) {
    SubscribedStream stream;
    const std::weak_ptr<RecordingSubscriber> subscriber = stream.subscriber;
    stream.cancel();
    stream.subscriber.reset();
    EXPECT_FALSE(subscriber.expired());
    stream.destroy();
    EXPECT_TRUE(subscriber.expired());
}

TEST(CachedValuePublisherSubscription, TheSubscriptionLivesAsLongAsThePublisher) {
    SubscribedStream stream;
    const auto subscription = stream.subscriber->subscription;
    stream.cancel();
    EXPECT_FALSE(subscription.expired());
    stream.destroy();
    EXPECT_TRUE(subscription.expired());
}

TEST(CachedValuePublisherSubscription, TheSubscriptionDoesNotKeepThePublisherAlive) {
    SubscribedStream stream;
    const std::weak_ptr<IntPublisher> publisher = stream.publisher;
    const auto subscription = stream.subscriber->subscription.lock();
    stream.destroy();
    EXPECT_TRUE(publisher.expired());
}

TEST(CachedValuePublisherSubscription, TheSubscriptionDoesNothingWithoutThePublisher) {
    SubscribedStream stream;
    stream.offer({1});
    const auto subscription = stream.subscriber->subscription.lock();
    stream.destroy();
    EXPECT_EQ((Events{"onComplete", "finish"}), stream.take());
    subscription->request(1);
    subscription->cancel();
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherSubscription, ACompletedStreamCallsOnCompleteAtOnce) {
    Stream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completed);
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe", "onComplete"}), stream.take());
    stream.request(1);
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherSubscription, AFailedStreamCallsOnErrorAtOnce) {
    Stream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Errored);
    setError(*stream.publisher, std::make_exception_ptr(std::runtime_error("broken")));
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe", "onError broken"}), stream.take());
    stream.request(1);
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherSubscription, ACancelledStreamCallsOnSubscribeOnly) {
    Stream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Cancelled);
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe"}), stream.take());
    stream.request(1);
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherSubscription, ACompletingStreamDeliversQueuedValues) {
    Stream stream(2);
    stream.offer({1, 2});
    setState(*stream.publisher, PublisherState::Completing);
    stream.subscribe();
    stream.request(2);
    EXPECT_EQ((Events{"onSubscribe", "onNext 1", "onNext 2", "onComplete", "finish"}),
              stream.take());
}

TEST(CachedValuePublisherSubscription, ACompletingStreamWithAnEmptyQueueCompletes) {
    Stream stream;
    setState(*stream.publisher, PublisherState::Completing);
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe", "onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherSubscription, AStreamThatCompletesInOnSubscribeCallsOnCompleteOnce) {
    Stream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.subscriber->inOnSubscribe = [&] { stream.request(1); };
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe", "onNext 1", "onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherSubscription, RemainingDemandIsServedAfterOnSubscribe) {
    Stream stream(2);
    stream.offer({1, 2});
    stream.subscriber->inOnNext = [](int value) {
        if (value == 1)
            throw std::runtime_error("no");
    };
    stream.subscriber->inOnSubscribe = [&] {
        EXPECT_THROW(stream.request(2), std::runtime_error);
        stream.events.push_back("end of onSubscribe");
    };
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe", "onNext 1", "end of onSubscribe", "onNext 2"}), stream.take());
}

} // namespace connector::reactive_streams
