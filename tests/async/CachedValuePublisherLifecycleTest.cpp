/// The end of a stream: cancelled by its subscriber, or completed by its destructor.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/BlockedReader.hpp"
#include "async/Stream.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace connector::reactive_streams {

using test::Events;
using test::expectThrows;
using test::futureAlreadyReturned;
using test::IntPublisher;
using test::onAnotherThread;
using test::RecordingSubscriber;
using test::Stream;
using test::SubscribedStream;

namespace {

/// Records the result of the completion future as an event.
void noteOutcome(Stream& stream) {
    stream.publisher->completionFuture().then([&stream](Future<bool>& outcome) {
        stream.events.push_back(outcome.get() ? "future true" : "future false");
    });
}

} // namespace

TEST(CachedValuePublisherLifecycle, TheCompletionFutureIsReturnedOnce) {
    Stream stream;
    EXPECT_TRUE(stream.publisher->completionFuture().valid());
    expectThrows<std::runtime_error>(futureAlreadyReturned,
                                     [&] { return stream.publisher->completionFuture(); });
}

TEST(CachedValuePublisherLifecycle, TheCompletionFutureCanBeRequestedAfterTheEnd) {
    SubscribedStream stream;
    stream.cancel();
    EXPECT_FALSE(stream.publisher->completionFuture().get());
}

TEST(CachedValuePublisherLifecycle, CancellingResolvesTheFutureThenCallsFinish) {
    SubscribedStream stream;
    noteOutcome(stream);
    stream.cancel();
    EXPECT_EQ((Events{"future false", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, ASecondCancelDoesNothing) {
    SubscribedStream stream;
    stream.cancel();
    stream.take();
    stream.cancel();
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherLifecycle, AfterCancelNothingIsDelivered) {
    SubscribedStream stream(-1);
    stream.offer({1});
    stream.cancel();
    stream.take();
    stream.request(5);
    stream.offer({2});
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherLifecycle, EarlierDemandDeliversNothingAfterCancel) {
    SubscribedStream stream;
    stream.request(5);
    stream.cancel();
    stream.take();
    stream.offer({1});
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherLifecycle, DestroyingResolvesTheFutureThenCallsOnCompleteThenFinish) {
    SubscribedStream stream;
    noteOutcome(stream);
    stream.destroy();
    EXPECT_EQ((Events{"future true", "onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, DestroyingDropsQueuedValues) {
    SubscribedStream stream(2);
    stream.offer({1, 2});
    stream.destroy();
    EXPECT_EQ((Events{"onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, DestroyingWithoutSubscriberCallsFinish) {
    Stream stream;
    noteOutcome(stream);
    stream.destroy();
    EXPECT_EQ((Events{"future true", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, TheCompletionFutureOutlivesThePublisher) {
    Stream stream;
    Future<bool> outcome = stream.publisher->completionFuture();
    stream.destroy();
    EXPECT_TRUE(outcome.get());
}

TEST(CachedValuePublisherLifecycle, DestroyingACancelledPublisherCallsNothing) {
    SubscribedStream stream;
    Future<bool> outcome = stream.publisher->completionFuture();
    stream.cancel();
    stream.take();
    stream.destroy();
    EXPECT_EQ(Events(), stream.take());
    EXPECT_FALSE(outcome.get());
}

TEST(CachedValuePublisherLifecycle, TheSubscriptionDoesNothingInOnComplete) {
    SubscribedStream stream;
    const auto subscription = stream.subscriber->subscription.lock();
    stream.subscriber->inOnComplete = [&] {
        subscription->request(1);
        subscription->cancel();
    };
    stream.destroy();
    EXPECT_EQ((Events{"onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, TheStateChangesBeforeTheFutureIsResolved) {
    SubscribedStream stream;
    stream.request(5);
    stream.publisher->completionFuture().then([&](Future<bool>&) {
        stream.events.push_back("future");
        stream.cancel();
        stream.offer({1});
    });
    stream.cancel();
    EXPECT_EQ((Events{"future", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, ThePublisherIsNotLockedWhileTheFutureIsResolved) {
    SubscribedStream stream;
    stream.publisher->completionFuture().then([&](Future<bool>&) {
        onAnotherThread([&] { stream.offer({1}); });
        stream.events.push_back("future");
    });
    stream.cancel();
    EXPECT_EQ((Events{"future", "finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, ThePublisherIsNotLockedWhileFinishRuns) {
    SubscribedStream stream;
    stream.inFinish = [&] {
        onAnotherThread([&] { stream.offer({1}); });
        onAnotherThread([&] { stream.cancel(); });
    };
    stream.cancel();
    EXPECT_EQ((Events{"finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, FinishMayUseTheStream) {
    SubscribedStream stream;
    stream.inFinish = [&] {
        stream.request(1);
        stream.offer({1});
        stream.cancel();
    };
    stream.cancel();
    EXPECT_EQ((Events{"finish"}), stream.take());
}

TEST(CachedValuePublisherLifecycle, AnEmptyFinishCallbackThrowsFromCancel) {
    Events events;
    const auto subscriber = std::make_shared<RecordingSubscriber>(events);
    const auto publisher = std::make_shared<IntPublisher>(nullptr, 1);
    Future<bool> outcome = publisher->completionFuture();
    publisher->subscribe(subscriber);
    const auto subscription = subscriber->subscription.lock();
    EXPECT_THROW(subscription->cancel(), std::bad_function_call);
    EXPECT_FALSE(outcome.get());
    subscription->cancel(); // does nothing: the stream is cancelled
    EXPECT_EQ((Events{"onSubscribe"}), events);
}

TEST(CachedValuePublisherLifecycle, AThrowingFinishCallbackThrowsFromCancel) {
    SubscribedStream stream;
    stream.inFinish = [] { throw std::runtime_error("no"); };
    expectThrows<std::runtime_error>("no", [&] { stream.cancel(); });
    EXPECT_EQ((Events{"finish"}), stream.take());
    stream.cancel();
    stream.destroy();
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherLifecycle, FinishRunsWhenAContinuationThrowsFromCancel) {
    SubscribedStream stream;
    stream.publisher->completionFuture().then(
        [](Future<bool>&) { throw std::runtime_error("thrown by the continuation"); });
    expectThrows<std::runtime_error>("thrown by the continuation", [&] { stream.cancel(); });
    EXPECT_EQ((Events{"finish"}), stream.take());
    stream.offer({1});
    stream.request(1);
    stream.cancel();
    stream.destroy();
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherLifecycle, TheExceptionOfFinishReplacesThatOfAContinuation) {
    SubscribedStream stream;
    stream.publisher->completionFuture().then(
        [](Future<bool>&) { throw std::runtime_error("thrown by the continuation"); });
    stream.inFinish = [] { throw std::runtime_error("thrown by finish"); };
    expectThrows<std::runtime_error>("thrown by finish", [&] { stream.cancel(); });
}

TEST(CachedValuePublisherLifecycle, APublisherOnTheStackCompletesAtTheEndOfItsScope) {
    Events events;
    std::optional<Future<bool>> outcome;
    {
        IntPublisher publisher([&] { events.push_back("finish"); }, 1);
        outcome = publisher.completionFuture();
        publisher.onNext(1);
        EXPECT_EQ(Events(), events);
    }
    EXPECT_EQ((Events{"finish"}), events);
    EXPECT_TRUE(outcome->get());
}

TEST(CachedValuePublisherLifecycleDeathTest, AnEmptyFinishCallbackInTheDestructorEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH({ const IntPublisher publisher(nullptr, 1); }, "bad_function_call");
}

TEST(CachedValuePublisherLifecycleDeathTest, AThrowingFinishCallbackInTheDestructorEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        { const IntPublisher publisher([] { throw std::runtime_error("thrown late"); }, 1); },
        "thrown late");
}

TEST(CachedValuePublisherLifecycleDeathTest, AThrowingSubscriberInTheDestructorEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            SubscribedStream stream;
            stream.subscriber->inOnComplete = [] { throw std::runtime_error("thrown late"); };
            stream.destroy();
        },
        "thrown late");
}

TEST(CachedValuePublisherLifecycleDeathTest, AThrowingContinuationInTheDestructorEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            Stream stream;
            stream.publisher->completionFuture().then(
                [](Future<bool>&) { throw std::runtime_error("thrown late"); });
            stream.destroy();
        },
        "thrown late");
}

} // namespace connector::reactive_streams
