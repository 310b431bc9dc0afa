/// Publishers that several threads use. Also run with the thread sanitizer.
///
/// Two threads may call the subscriber at the same time, and values may then arrive in another
/// order. Counts, limits and the end of the stream hold nevertheless.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/Internals.hpp"
#include "async/Race.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <utility>
#include <vector>

namespace connector::reactive_streams {

using test::IntPublisher;
using test::race;

namespace {

constexpr int rounds = 100;
constexpr int valuesOfEach = 50;

/// Records its calls; may be called by several threads at the same time.
class CountingSubscriber : public Subscriber<int> {
public:
    void onSubscribe(std::weak_ptr<Subscription> newOne) override {
        subscription = newOne.lock(); // does not keep the publisher alive
    }
    void onComplete() override { ++completions; }
    void onCancelled() override { ++unexpected; }
    void onNext(const int& value) override {
        const std::lock_guard<std::mutex> lock(mutex);
        values.push_back(value);
    }
    void onError(std::exception_ptr) override { ++unexpected; }

    std::vector<int> sortedValues() {
        const std::lock_guard<std::mutex> lock(mutex);
        std::vector<int> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        return sorted;
    }

    int lastValue() {
        const std::lock_guard<std::mutex> lock(mutex);
        return values.back();
    }

    std::shared_ptr<Subscription> subscription;
    std::atomic<int> completions{0};
    std::atomic<int> unexpected{0};

private:
    std::mutex mutex;
    std::vector<int> values;
};

/// A publisher with its subscriber. Counts the calls of the finish callback.
class SharedStream {
public:
    explicit SharedStream(int capacity, std::shared_ptr<CountingSubscriber> newSubscriber =
                                            std::make_shared<CountingSubscriber>())
        : subscriber(std::move(newSubscriber)),
          publisher(std::make_shared<IntPublisher>([this] { ++finishes; }, capacity)),
          outcome(publisher->completionFuture()) {
        publisher->subscribe(subscriber);
    }

    std::function<void()> offering(int first) const {
        return [first, owner = publisher] {
            for (int value = first; value < first + valuesOfEach; ++value)
                owner->onNext(value);
        };
    }
    std::function<void()> requesting() const {
        return [subscription = subscriber->subscription] {
            for (int call = 0; call < valuesOfEach; ++call)
                subscription->request(1);
        };
    }
    std::function<void()> cancelling() const {
        return [subscription = subscriber->subscription] { subscription->cancel(); };
    }

    std::atomic<int> finishes{0};
    const std::shared_ptr<CountingSubscriber> subscriber;
    std::shared_ptr<IntPublisher> publisher;
    Future<bool> outcome;
};

std::vector<int> numbersUpTo(int end) {
    std::vector<int> numbers(end);
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

} // namespace

TEST(CachedValuePublisherConcurrency, EveryValueArrivesOnceWithUnlimitedCapacity) {
    for (int round = 0; round < rounds; ++round) {
        SharedStream stream(-1);
        race({stream.offering(0), stream.offering(valuesOfEach), stream.requesting(),
              stream.requesting()});
        EXPECT_EQ(numbersUpTo(2 * valuesOfEach), stream.subscriber->sortedValues());
    }
}

TEST(CachedValuePublisherConcurrency, NeverMoreArrivesThanWasRequested) {
    for (int round = 0; round < rounds; ++round) {
        SharedStream stream(-1);
        race({stream.offering(0), stream.offering(valuesOfEach), stream.requesting()});
        EXPECT_EQ(std::size_t{valuesOfEach}, stream.subscriber->sortedValues().size());
    }
}

TEST(CachedValuePublisherConcurrency, TheNewestValueIsDeliveredAfterConcurrentOffers) {
    for (int round = 0; round < rounds; ++round) {
        SharedStream stream(1);
        race({stream.offering(0), stream.offering(valuesOfEach), stream.requesting()});
        constexpr int last = 1'000'000;
        stream.publisher->onNext(last);
        stream.subscriber->subscription->request(1);
        EXPECT_EQ(last, stream.subscriber->lastValue()); // in the order of arrival
    }
}

TEST(CachedValuePublisherConcurrency, OneOfSeveralSubscribersIsAttached) {
    for (int round = 0; round < rounds; ++round) {
        const auto publisher = std::make_shared<IntPublisher>([] {}, 1);
        std::atomic<int> attached{0};
        const auto subscribe = [&] {
            try {
                publisher->subscribe(std::make_shared<CountingSubscriber>());
                ++attached;
            } catch (const std::invalid_argument&) {
            }
        };
        race({subscribe, subscribe, subscribe});
        EXPECT_EQ(1, attached);
    }
}

TEST(CachedValuePublisherConcurrency, ConcurrentCancellationsFinishOnce) {
    for (int round = 0; round < rounds; ++round) {
        SharedStream stream(1);
        race({stream.cancelling(), stream.cancelling(), stream.offering(0), stream.requesting()});
        EXPECT_EQ(1, stream.finishes);
        EXPECT_EQ(0, stream.subscriber->completions);
        EXPECT_FALSE(stream.outcome.get());
    }
}

TEST(CachedValuePublisherConcurrency, NothingIsDeliveredAfterAConcurrentCancel) {
    for (int round = 0; round < rounds; ++round) {
        SharedStream stream(1);
        race({stream.cancelling(), stream.offering(0), stream.requesting()});
        const std::vector<int> before = stream.subscriber->sortedValues();
        stream.requesting()();
        stream.offering(0)();
        EXPECT_EQ(before, stream.subscriber->sortedValues());
    }
}

TEST(CachedValuePublisherConcurrency, APublisherDestroyedDuringRequestsCompletesOnce) {
    for (int round = 0; round < rounds; ++round) {
        SharedStream stream(-1);
        stream.offering(0)();
        race({stream.requesting(), stream.requesting(), [&] { stream.publisher.reset(); }});
        EXPECT_EQ(1, stream.finishes);
        EXPECT_EQ(1, stream.subscriber->completions);
        EXPECT_EQ(0, stream.subscriber->unexpected);
        EXPECT_TRUE(stream.outcome.get());
    }
}

TEST(CachedValuePublisherConcurrency, APublisherDestroyedDuringCancelEndsOnce) {
    for (int round = 0; round < rounds; ++round) {
        SharedStream stream(1);
        race({stream.cancelling(), stream.requesting(), [&] { stream.publisher.reset(); }});
        EXPECT_EQ(1, stream.finishes);
        EXPECT_EQ(stream.outcome.get() ? 1 : 0, stream.subscriber->completions);
    }
}

TEST(CachedValuePublisherConcurrency, AThrowingSubscriberLosesNoValue) {
    class Throwing final : public CountingSubscriber {
        void onNext(const int& value) override {
            CountingSubscriber::onNext(value);
            if (value % 3 == 0)
                throw std::logic_error("no");
        }
    };
    for (int round = 0; round < rounds; ++round) {
        SharedStream stream(-1, std::make_shared<Throwing>());
        const auto ignoringFailures = [](const std::function<void()>& action) {
            try {
                action();
            } catch (const std::logic_error&) { // of the subscriber
            }
        };
        const auto offer = [&](int first) {
            for (int value = first; value < first + valuesOfEach; ++value)
                ignoringFailures([&] { stream.publisher->onNext(value); });
        };
        const auto request = [&] {
            for (int call = 0; call < valuesOfEach; ++call)
                ignoringFailures([&] { stream.subscriber->subscription->request(1); });
        };
        race({[&] { offer(0); }, [&] { offer(valuesOfEach); }, request, request});
        while (stream.subscriber->sortedValues().size() < 2 * valuesOfEach)
            ignoringFailures([&] { stream.subscriber->subscription->request(0); });
        EXPECT_EQ(numbersUpTo(2 * valuesOfEach), stream.subscriber->sortedValues());
    }
}

// The producer's lock comes before the publisher's. The subscriber and the finish callback take the
// producer's lock, so the publisher must not hold its own while it calls them.
TEST(CachedValuePublisherConcurrency, ConcurrentCallsUnderTheProducersLockDoNotDeadlock) {
    class Locking final : public CountingSubscriber {
    public:
        explicit Locking(std::recursive_mutex& newMutex) : mutex(newMutex) {}
        void onNext(const int& value) override {
            const std::lock_guard<std::recursive_mutex> lock(mutex);
            CountingSubscriber::onNext(value);
        }
        void onComplete() override {
            const std::lock_guard<std::recursive_mutex> lock(mutex);
            CountingSubscriber::onComplete();
        }

    private:
        std::recursive_mutex& mutex;
    };
    for (int round = 0; round < rounds; ++round) {
        std::recursive_mutex mutex;
        int finishes = 0; // guarded by mutex
        const auto finish = [&] {
            const std::lock_guard<std::recursive_mutex> lock(mutex);
            ++finishes;
        };
        auto publisher = std::make_shared<IntPublisher>(finish, 1);
        const auto subscriber = std::make_shared<Locking>(mutex);
        publisher->subscribe(subscriber);
        const auto offer = [&, owner = publisher](int count) {
            for (int value = 0; value < count; ++value) {
                const std::lock_guard<std::recursive_mutex> lock(mutex);
                owner->onNext(value);
            }
        };
        const auto request = [&] {
            for (int call = 0; call < valuesOfEach; ++call)
                subscriber->subscription->request(1);
        };
        race({[&] { offer(valuesOfEach); }, request, [&] { subscriber->subscription->cancel(); }});
        EXPECT_EQ(1, finishes);
    }
}

} // namespace connector::reactive_streams
