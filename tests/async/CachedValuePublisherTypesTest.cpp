/// The publisher as a template: its declarations, and values of other types.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/Internals.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace connector::reactive_streams {

using test::IntPublisher;

namespace {

static_assert(std::is_same_v<std::underlying_type_t<PublisherState>, std::uint32_t>);
static_assert(sizeof(PublisherState) == 4);
static_assert(static_cast<std::uint32_t>(PublisherState::Active) == 0);
static_assert(static_cast<std::uint32_t>(PublisherState::Completing) == 1);
static_assert(static_cast<std::uint32_t>(PublisherState::Completed) == 2);
static_assert(static_cast<std::uint32_t>(PublisherState::Cancelled) == 3);
static_assert(static_cast<std::uint32_t>(PublisherState::Errored) == 4);

static_assert(std::is_base_of_v<Publisher, PublisherAPI<int>>);
static_assert(std::is_base_of_v<PublisherAPI<int>, IntPublisher>);
static_assert(std::is_base_of_v<std::enable_shared_from_this<IntPublisher>, IntPublisher>);
static_assert(std::is_abstract_v<PublisherAPI<int>>);
static_assert(std::has_virtual_destructor_v<Publisher>);
static_assert(std::is_same_v<IntPublisher, CachedValuePublisher<int, std::function<void()>>>);
static_assert(std::is_constructible_v<IntPublisher, std::nullptr_t, int>);
static_assert(!std::is_copy_constructible_v<IntPublisher>);
static_assert(!std::is_move_constructible_v<IntPublisher>);
static_assert(std::is_same_v<decltype(&PublisherAPI<int>::completionFuture),
                             Future<bool> (PublisherAPI<int>::*)()>);
static_assert(std::is_same_v<decltype(&PublisherAPI<int>::subscribe),
                             void (PublisherAPI<int>::*)(std::shared_ptr<Subscriber<int>>)>);

/// Counts its copies. Not default-constructible.
struct Counted {
    explicit Counted(int newNumber) : number(newNumber) {}
    Counted(const Counted& other) : number(other.number) { ++copies; }
    Counted(Counted&&) noexcept = default;
    int number;
    static inline int copies = 0;
};

/// Collects every value.
template <typename T>
class Collector : public Subscriber<T> {
public:
    void onSubscribe(std::weak_ptr<Subscription> newOne) override { subscription = newOne; }
    void onComplete() override { completed = true; }
    void onNext(const T& value) override { values.push_back(value); }
    void onError(std::exception_ptr) override {}

    std::weak_ptr<Subscription> subscription;
    std::vector<T> values;
    bool completed = false;
};

} // namespace

TEST(CachedValuePublisherTypes, ARequestedValueIsNotCopied) {
    const auto publisher = std::make_shared<CachedValuePublisher<Counted>>([] {}, 1);
    class Taker final : public Collector<Counted> {
        void onNext(const Counted& value) override { last = &value; }

    public:
        const Counted* last = nullptr;
    };
    const auto subscriber = std::make_shared<Taker>();
    publisher->subscribe(subscriber);
    subscriber->subscription.lock()->request(1);
    const Counted value(1);
    Counted::copies = 0;
    publisher->onNext(value);
    EXPECT_EQ(0, Counted::copies);
    EXPECT_EQ(&value, subscriber->last);
}

TEST(CachedValuePublisherTypes, AQueuedValueIsCopiedOnceAndThenMoved) {
    const auto publisher = std::make_shared<CachedValuePublisher<Counted>>([] {}, 1);
    const auto subscriber = std::make_shared<Collector<Counted>>();
    subscriber->values.reserve(1);
    publisher->subscribe(subscriber);
    Counted::copies = 0;
    publisher->onNext(Counted(7));
    EXPECT_EQ(1, Counted::copies);
    subscriber->subscription.lock()->request(1);
    ASSERT_EQ(1u, subscriber->values.size());
    EXPECT_EQ(7, subscriber->values.front().number);
    EXPECT_EQ(2, Counted::copies); // the second one is the collector's
}

TEST(CachedValuePublisherTypes, ADeliveredValueIsReleased) {
    using Value = std::shared_ptr<int>;
    const auto publisher = std::make_shared<CachedValuePublisher<Value>>([] {}, 1);
    const auto subscriber = std::make_shared<Collector<Value>>();
    publisher->subscribe(subscriber);
    const auto value = std::make_shared<int>(1);
    publisher->onNext(value);
    subscriber->subscription.lock()->request(1);
    subscriber->values.clear();
    EXPECT_EQ(1, value.use_count());
}

TEST(CachedValuePublisherTypes, ADroppedValueIsReleased) {
    using Value = std::shared_ptr<int>;
    const auto publisher = std::make_shared<CachedValuePublisher<Value>>([] {}, 1);
    const auto value = std::make_shared<int>(1);
    publisher->onNext(value);
    EXPECT_EQ(2, value.use_count());
    publisher->onNext(nullptr);
    EXPECT_EQ(1, value.use_count());
}

TEST(CachedValuePublisherTypes, ItWorksThroughPublisherAPI) {
    const auto publisher = std::make_shared<CachedValuePublisher<std::string>>([] {}, 1);
    PublisherAPI<std::string>& api = *publisher;
    const auto subscriber = std::make_shared<Collector<std::string>>();
    EXPECT_TRUE(api.completionFuture().valid());
    api.subscribe(subscriber);
    subscriber->subscription.lock()->request(1);
    publisher->onNext("text");
    EXPECT_EQ(std::vector<std::string>{"text"}, subscriber->values);
}

TEST(CachedValuePublisherTypes, ItIsDestroyedThroughAPointerToPublisher) {
    const auto subscriber = std::make_shared<Collector<int>>();
    std::shared_ptr<Publisher> root;
    {
        const auto publisher = std::make_shared<IntPublisher>([] {}, 1);
        publisher->subscribe(subscriber);
        root = publisher;
    }
    EXPECT_FALSE(subscriber->completed);
    root.reset();
    EXPECT_TRUE(subscriber->completed);
}

TEST(CachedValuePublisherTypes, AMoveOnlyFinishCallbackIsAccepted) {
    int calls = 0;
    auto finish = [&calls, increment = std::make_unique<int>(1)] { calls += *increment; };
    { const CachedValuePublisher<int, decltype(finish)> publisher(std::move(finish), 1); }
    EXPECT_EQ(1, calls);
}

} // namespace connector::reactive_streams
