/// An exception of the subscriber leaves the call that delivered, and the stream stays usable.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/BlockedReader.hpp"
#include "async/Stream.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace connector::reactive_streams {

using test::Events;
using test::expectThrows;
using test::onAnotherThread;
using test::setError;
using test::setState;
using test::Stream;
using test::SubscribedStream;

namespace {

const auto throwing = [] { throw std::logic_error("thrown by the subscriber"); };

template <typename Statement>
void expectThrown(Statement statement) {
    expectThrows<std::logic_error>("thrown by the subscriber", statement);
}

/// Throws on every 1, and accepts every other value.
class StreamThatThrowsAtOne : public SubscribedStream {
public:
    explicit StreamThatThrowsAtOne(int capacity = 1) : SubscribedStream(capacity) {
        subscriber->inOnNext = [](int value) {
            if (value == 1)
                throwing();
        };
    }
};

} // namespace

TEST(CachedValuePublisherThrowingSubscriber, OnNextThrowsFromRequest) {
    StreamThatThrowsAtOne stream(-1);
    stream.offer({1, 2, 3});
    expectThrown([&] { stream.request(2); });
    EXPECT_EQ((Events{"onNext 1"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, TheNextRequestDeliversTheRemainingValues) {
    StreamThatThrowsAtOne stream(-1);
    stream.offer({1, 2, 3});
    expectThrown([&] { stream.request(2); });
    stream.take();
    stream.request(1);
    EXPECT_EQ((Events{"onNext 2", "onNext 3"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, ARequestOfZeroDeliversTheRemainingValues) {
    StreamThatThrowsAtOne stream(-1);
    stream.offer({1, 2});
    expectThrown([&] { stream.request(2); });
    stream.take();
    stream.request(0);
    EXPECT_EQ((Events{"onNext 2"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, TheNextOfferDeliversTheRemainingValues) {
    StreamThatThrowsAtOne stream(-1);
    stream.offer({1, 2});
    expectThrown([&] { stream.request(10); });
    stream.take();
    stream.offer({3});
    EXPECT_EQ((Events{"onNext 2", "onNext 3"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, OnNextThrowsFromAnOfferThatStartsTheDelivery) {
    StreamThatThrowsAtOne stream(-1);
    stream.offer({1, 1});
    expectThrown([&] { stream.request(10); });
    expectThrown([&] { stream.offer({2}); });
    EXPECT_EQ((Events{"onNext 1", "onNext 1"}), stream.take());
    stream.offer({3});
    EXPECT_EQ((Events{"onNext 2", "onNext 3"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, TheValueCountsAsDelivered) {
    StreamThatThrowsAtOne stream;
    stream.offer({1});
    expectThrown([&] { stream.request(5); });
    EXPECT_EQ(4u, test::demandOf(*stream.publisher));
}

TEST(CachedValuePublisherThrowingSubscriber, OnNextThrowsFromAnOfferThatIsDeliveredAtOnce) {
    StreamThatThrowsAtOne stream;
    stream.request(2);
    expectThrown([&] { stream.offer({1}); });
    EXPECT_EQ((Events{"onNext 1"}), stream.take());
    EXPECT_EQ(1u, test::demandOf(*stream.publisher));
    stream.offer({2, 3});
    EXPECT_EQ((Events{"onNext 2"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, TheLockIsReleased) {
    StreamThatThrowsAtOne stream;
    stream.offer({1});
    expectThrown([&] { stream.request(2); });
    onAnotherThread([&] { EXPECT_THROW(stream.offer({1}), std::logic_error); });
    onAnotherThread([&] { stream.request(1); });
    stream.take();
    stream.offer({2});
    EXPECT_EQ((Events{"onNext 2"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, OnSubscribeThrowsFromSubscribe) {
    Stream stream;
    stream.subscriber->inOnSubscribe = throwing;
    expectThrown([&] { stream.subscribe(); });
    stream.offer({1});
    stream.request(1);
    EXPECT_EQ((Events{"onSubscribe", "onNext 1"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, OnNextThrowsFromARequestInOnSubscribe) {
    Stream stream;
    stream.offer({1});
    stream.subscriber->inOnNext = [](int) { throwing(); };
    stream.subscriber->inOnSubscribe = [&] { expectThrown([&] { stream.request(1); }); };
    stream.subscribe();
    EXPECT_EQ((Events{"onSubscribe", "onNext 1"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, NothingFollowsAnOnSubscribeThatThrowsAfterTheEnd) {
    for (const PublisherState end : {PublisherState::Completed, PublisherState::Errored}) {
        Stream stream;
        setState(*stream.publisher, end);
        stream.subscriber->inOnSubscribe = throwing;
        expectThrown([&] { stream.subscribe(); });
        EXPECT_EQ((Events{"onSubscribe"}), stream.take());
    }
}

TEST(CachedValuePublisherThrowingSubscriber, OnCompleteThrowsFromSubscribe) {
    Stream stream;
    setState(*stream.publisher, PublisherState::Completed);
    stream.subscriber->inOnComplete = throwing;
    expectThrown([&] { stream.subscribe(); });
    EXPECT_EQ((Events{"onSubscribe", "onComplete"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, OnErrorThrowsFromSubscribe) {
    Stream stream;
    setState(*stream.publisher, PublisherState::Errored);
    setError(*stream.publisher, std::make_exception_ptr(std::runtime_error("broken")));
    stream.subscriber->inOnError = throwing;
    expectThrown([&] { stream.subscribe(); });
    EXPECT_EQ((Events{"onSubscribe", "onError broken"}), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, ItMayCancelAndThenThrow) {
    SubscribedStream stream(-1);
    stream.subscriber->inOnNext = [&](int) {
        stream.cancel();
        throwing();
    };
    stream.offer({1, 2});
    expectThrown([&] { stream.request(2); });
    EXPECT_EQ((Events{"onNext 1", "finish"}), stream.take());
    stream.request(1);
    stream.destroy();
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisherThrowingSubscriber, AnExceptionPassesThroughNestedDeliveries) {
    SubscribedStream stream;
    stream.subscriber->inOnNext = [&](int value) {
        if (value == 1)
            stream.offer({2});
        if (value == 2)
            throwing();
    };
    stream.offer({1});
    expectThrown([&] { stream.request(3); });
    EXPECT_EQ((Events{"onNext 1", "onNext 2"}), stream.take());
    stream.offer({3});
    EXPECT_EQ((Events{"onNext 3"}), stream.take());
}

} // namespace connector::reactive_streams
