/// Publishers when memory runs out. Replaces operator new.
///
/// Each test makes every allocation of one operation fail in turn. The operation either throws
/// std::bad_alloc and has changed nothing, or succeeds without the memory.
#include <connector/async/CachedValuePublisher.hpp>

#include "support/AllocationCount.hpp"
#include "support/AllocationFailure.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace connector::reactive_streams {

using test::failEveryAllocation;

namespace {

using Text = std::string;

const Text longText(1000, 'x');

const auto nothing = [](auto&) {};

/// A stream of texts. Its callbacks need memory for long texts only.
class TextStream {
public:
    explicit TextStream(int capacity)
        : publisher(std::make_shared<CachedValuePublisher<Text>>([this] { ++finishes; }, capacity)),
          subscriber(std::make_shared<Counting>(*this)) {}

    void request(std::uint64_t count) { subscription.lock()->request(count); }
    void cancel() { subscription.lock()->cancel(); }

    int subscriptions = 0;
    int completions = 0;
    int finishes = 0;
    std::vector<Text> values;
    std::weak_ptr<Subscription> subscription;

private:
    class Counting final : public Subscriber<Text> {
    public:
        explicit Counting(TextStream& newStream) : stream(newStream) {}
        void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
            stream.subscription = std::move(newSubscription);
            ++stream.subscriptions;
        }
        void onComplete() override { ++stream.completions; }
        void onNext(const Text& value) override { stream.values.push_back(value); }
        void onError(std::exception_ptr) override {}

    private:
        TextStream& stream;
    };

public:
    std::shared_ptr<CachedValuePublisher<Text>> publisher;
    std::shared_ptr<Subscriber<Text>> subscriber;
};

std::unique_ptr<TextStream> newStream(int capacity = 1) {
    return std::make_unique<TextStream>(capacity);
}

std::unique_ptr<TextStream> subscribedStream(int capacity = 1) {
    auto stream = newStream(capacity);
    stream->publisher->subscribe(stream->subscriber);
    return stream;
}

/// @return how many short texts an unlimited queue holds when it allocates for the first time
int fillUntilTheNextValueAllocates(TextStream& stream) {
    for (int count = 0;; ++count) {
        const std::size_t before = test::allocationCount();
        stream.publisher->onNext(std::to_string(count));
        if (test::allocationCount() != before)
            return count + 1;
    }
}

} // namespace

TEST(CachedValuePublisherOutOfMemory, APublisherIsConstructedOrNot) {
    const std::size_t failures = failEveryAllocation(
        [] { return std::shared_ptr<CachedValuePublisher<Text>>(); },
        [](auto& publisher) { publisher = std::make_shared<CachedValuePublisher<Text>>([] {}, 1); },
        [](auto& publisher) { EXPECT_EQ(nullptr, publisher); },
        [](auto& publisher) { publisher->onNext(longText); });
    EXPECT_GE(failures, 2u); // the publisher, the state of its promise
}

TEST(CachedValuePublisherOutOfMemory, AFailedSubscribeAttachesNoSubscriber) {
    const std::size_t failures =
        failEveryAllocation([] { return newStream(); },
                            [](auto& stream) { stream->publisher->subscribe(stream->subscriber); },
                            [](auto& stream) {
                                EXPECT_EQ(0, stream->subscriptions);
                                stream->publisher->subscribe(stream->subscriber);
                                EXPECT_EQ(1, stream->subscriptions);
                            },
                            [](auto& stream) { EXPECT_EQ(1, stream->subscriptions); });
    EXPECT_EQ(1u, failures);
}

TEST(CachedValuePublisherOutOfMemory, AFailedOfferLeavesTheQueueUnchanged) {
    for (const int capacity : {0, 1, 3}) {
        const std::size_t failures = failEveryAllocation(
            [&] {
                auto stream = subscribedStream(capacity);
                stream->publisher->onNext("kept");
                return stream;
            },
            [](auto& stream) { stream->publisher->onNext(longText); },
            [](auto& stream) {
                stream->request(3);
                EXPECT_EQ(std::vector<Text>{"kept"}, stream->values);
            },
            [](auto& stream) {
                stream->request(3);
                EXPECT_EQ(longText, stream->values.back());
            });
        EXPECT_EQ(1u, failures); // the copy of the text
    }
}

TEST(CachedValuePublisherOutOfMemory, AQueueThatCannotGrowKeepsItsValues) {
    const int first = fillUntilTheNextValueAllocates(*subscribedStream(-1));
    const std::size_t failures = failEveryAllocation(
        [&] {
            auto stream = subscribedStream(-1);
            for (int value = 1; value < first; ++value)
                stream->publisher->onNext("kept");
            return stream;
        },
        [](auto& stream) { stream->publisher->onNext("new"); },
        [&](auto& stream) {
            stream->request(1000);
            EXPECT_EQ(std::vector<Text>(first - 1, "kept"), stream->values);
        },
        [&](auto& stream) {
            stream->request(1000);
            EXPECT_EQ("new", stream->values.back());
        });
    EXPECT_GE(failures, 1u);
}

TEST(CachedValuePublisherOutOfMemory, RequestingNeedsNoMemory) {
    const std::size_t failures = failEveryAllocation(
        [] {
            auto stream = subscribedStream();
            stream->publisher->onNext("kept"); // short: its copies need no memory
            stream->values.reserve(1);
            return stream;
        },
        [](auto& stream) { stream->request(1); }, nothing,
        [](auto& stream) { EXPECT_EQ(std::vector<Text>{"kept"}, stream->values); });
    EXPECT_EQ(0u, failures);
}

TEST(CachedValuePublisherOutOfMemory, CancelEndsTheStreamWithoutMemory) {
    struct Subject {
        std::unique_ptr<TextStream> stream = subscribedStream();
        Future<bool> outcome = stream->publisher->completionFuture();
    };
    const std::size_t failures =
        failEveryAllocation([] { return std::make_unique<Subject>(); },
                            [](auto& subject) { subject->stream->cancel(); },
                            [](auto&) { ADD_FAILURE() << "cancel has thrown"; },
                            [](auto& subject) {
                                EXPECT_EQ(1, subject->stream->finishes);
                                EXPECT_FALSE(subject->outcome.get());
                            });
    EXPECT_EQ(1u, failures);
}

TEST(CachedValuePublisherOutOfMemory, TheDestructorEndsTheStreamWithoutMemory) {
    struct Subject {
        std::unique_ptr<TextStream> stream = subscribedStream();
        Future<bool> outcome = stream->publisher->completionFuture();
    };
    const std::size_t failures =
        failEveryAllocation([] { return std::make_unique<Subject>(); },
                            [](auto& subject) { subject->stream->publisher.reset(); },
                            [](auto&) { ADD_FAILURE() << "a destructor has thrown"; },
                            [](auto& subject) {
                                EXPECT_EQ(1, subject->stream->completions);
                                EXPECT_EQ(1, subject->stream->finishes);
                                EXPECT_TRUE(subject->outcome.get());
                            });
    EXPECT_EQ(1u, failures);
}

TEST(CachedValuePublisherOutOfMemory, CompletionFutureNeedsNoMemory) {
    EXPECT_EQ(
        0u, failEveryAllocation([] { return newStream(); },
                                [](auto& stream) { return stream->publisher->completionFuture(); },
                                nothing, nothing));
}

} // namespace connector::reactive_streams
