/// The states Completing and Errored. No operation enters them, so the tests write them directly.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/BlockedReader.hpp"
#include "async/Stream.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace connector::reactive_streams {

using test::abandoned;
using test::Events;
using test::expectThrows;
using test::setState;
using test::SubscribedStream;

TEST(CachedValuePublisherCompleting, TheLastDeliveryCompletes) {
    SubscribedStream stream(2);
    Future<bool> outcome = stream.publisher->completionFuture();
    stream.offer({1, 2});
    setState(*stream.publisher, PublisherState::Completing);
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1"}), stream.take());
    stream.request(1);
    EXPECT_EQ((Events{"onNext 2", "onComplete", "finish"}), stream.take());
    EXPECT_TRUE(outcome.get());
}

TEST(CachedValuePublisherCompleting, NothingFollowsTheCompletion) {
    SubscribedStream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.request(1);
    stream.take();
    stream.request(1);
    stream.offer({2});
    stream.cancel();
    stream.destroy();
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherCompleting, ARequestWithAnEmptyQueueCompletes) {
    for (const std::uint64_t count : {0, 1}) {
        SubscribedStream stream;
        setState(*stream.publisher, PublisherState::Completing);
        stream.request(count);
        EXPECT_EQ((Events{"onComplete", "finish"}), stream.take()) << count;
    }
}

TEST(CachedValuePublisherCompleting, ARequestOfZeroDoesNotCompleteWithQueuedValues) {
    SubscribedStream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.request(0);
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherCompleting, ValuesAreStillAccepted) {
    SubscribedStream stream(2);
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.offer({2});
    stream.request(2);
    EXPECT_EQ((Events{"onNext 1", "onNext 2", "onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherCompleting, ARequestedValueIsDeliveredAndDoesNotComplete) {
    SubscribedStream stream;
    stream.request(2);
    setState(*stream.publisher, PublisherState::Completing);
    stream.offer({1});
    EXPECT_EQ((Events{"onNext 1"}), stream.take());
    stream.request(0);
    EXPECT_EQ((Events{"onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherCompleting, ItCanBeCancelled) {
    SubscribedStream stream;
    Future<bool> outcome = stream.publisher->completionFuture();
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.cancel();
    stream.request(1);
    EXPECT_EQ((Events{"finish"}), stream.take());
    EXPECT_FALSE(outcome.get());
}

TEST(CachedValuePublisherCompleting, ACancelFromTheLastDeliveryPreventsTheCompletion) {
    SubscribedStream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.subscriber->inOnNext = [&](int) { stream.cancel(); };
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1", "finish"}), stream.take());
}

TEST(CachedValuePublisherCompleting, DestroyingItCompletes) {
    SubscribedStream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.destroy();
    EXPECT_EQ((Events{"onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherCompleting, ARequestFromTheLastDeliveryCompletesOnceAndAtOnce) {
    SubscribedStream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.subscriber->inOnNext = [&](int) {
        stream.request(1);
        stream.events.push_back("end of 1");
    };
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1", "onComplete", "finish", "end of 1"}), stream.take());
}

TEST(CachedValuePublisherCompleting, AValueOfferedInTheLastDeliveryPrecedesTheCompletion) {
    SubscribedStream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.subscriber->inOnNext = [&](int value) {
        if (value == 1) {
            stream.offer({2});
            stream.request(1);
        }
    };
    stream.request(1);
    EXPECT_EQ((Events{"onNext 1", "onNext 2", "onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherCompleting, ThePublisherIsNotLockedInOnComplete) {
    SubscribedStream stream;
    setState(*stream.publisher, PublisherState::Completing);
    const auto use = [&] { test::onAnotherThread([&] { stream.cancel(); }); };
    stream.subscriber->inOnComplete = use;
    stream.inFinish = use;
    stream.request(1);
    EXPECT_EQ((Events{"onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherCompleting, OnCompleteThrowsFromRequestAfterFinish) {
    SubscribedStream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Completing);
    stream.subscriber->inOnComplete = [] { throw std::runtime_error("no"); };
    expectThrows<std::runtime_error>("no", [&] { stream.request(1); });
    EXPECT_EQ((Events{"onNext 1", "onComplete", "finish"}), stream.take());
    test::onAnotherThread([&] { stream.offer({2}); }); // would wait if the lock were held
    stream.destroy();
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherCompleting, OnCompleteAndFinishRunWhenAContinuationThrows) {
    SubscribedStream stream;
    stream.publisher->completionFuture().then(
        [](Future<bool>&) { throw std::runtime_error("thrown by the continuation"); });
    setState(*stream.publisher, PublisherState::Completing);
    expectThrows<std::runtime_error>("thrown by the continuation", [&] { stream.request(1); });
    EXPECT_EQ((Events{"onComplete", "finish"}), stream.take());
}

TEST(CachedValuePublisherErrored, NothingIsCalled) {
    SubscribedStream stream;
    stream.offer({1});
    setState(*stream.publisher, PublisherState::Errored);
    stream.offer({2});
    stream.request(5);
    stream.offer({3});
    stream.cancel();
    stream.destroy();
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherErrored, EarlierDemandDeliversNothing) {
    SubscribedStream stream;
    stream.request(5);
    setState(*stream.publisher, PublisherState::Errored);
    stream.offer({1});
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherErrored, TheCompletionFutureIsAbandoned) {
    SubscribedStream stream;
    Future<bool> outcome = stream.publisher->completionFuture();
    setState(*stream.publisher, PublisherState::Errored);
    stream.destroy();
    expectThrows<std::runtime_error>(abandoned, [&] { outcome.get(); });
}

} // namespace connector::reactive_streams
