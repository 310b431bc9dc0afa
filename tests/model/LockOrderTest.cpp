/// Lock order: the configuration's mutex comes before a publisher's mutex. A change holds the first
/// and takes the second. Everything that a publisher calls may take the configuration's mutex, so
/// the publisher must not hold its own mutex around such a call.
#include "configuration/MutexHolder.hpp"
#include "support/ObservedThread.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using test::MutexHolder;
using test::ObservedThread;

namespace {

constexpr int rounds = 2000;

/// Calls the configuration from every callback.
class EnteringSubscriber final : public connector::reactive_streams::Subscriber<OptionValue> {
public:
    using Subscription = connector::reactive_streams::Subscription;

    /// @param newConfiguration  outlives the subscriber
    explicit EnteringSubscriber(ConfigurationImpl& newConfiguration)
        : configuration(newConfiguration) {}

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
        subscription = std::move(newSubscription);
        configuration.has("x").get();
    }
    void onNext(const OptionValue&) override {
        configuration.get("x").get();
        ++values;
    }
    void onComplete() override {
        configuration.keys().get();
        ++completions;
    }
    void onError(std::exception_ptr) override {}

    void request() {
        if (const auto alive = subscription.lock())
            alive->request(1);
    }
    void cancel() {
        if (const auto alive = subscription.lock())
            alive->cancel();
    }

    std::atomic<int> values{0};
    std::atomic<int> completions{0};

private:
    ConfigurationImpl& configuration;
    std::weak_ptr<Subscription> subscription;
};

using Publisher = ConfigurationImpl::OptionPublisher;

class LockOrder : public testing::Test {
protected:
    LockOrder() { configuration->set("x", 0).get(); }

    /// Runs an action of the publisher until it blocks on the configuration's mutex, which another
    /// thread holds as a change does. Then offers a value to the publisher, as that change does
    /// next.
    /// @return whether the offer has to wait for the publisher's mutex
    bool publisherIsLockedDuring(std::function<void()> action) {
        MutexHolder change(*configuration);
        ObservedThread acting(std::move(action));
        EXPECT_TRUE(acting.blocksOn(*configuration));
        ObservedThread offering([this] { publisher->onNext(1); });
        const bool isLocked = offering.blocksOn(*publisher);
        change.release();
        acting.join();
        offering.join();
        return isLocked;
    }

    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    const std::shared_ptr<Publisher> publisher = configuration->watchOption("x");
    const std::shared_ptr<EnteringSubscriber> subscriber =
        std::make_shared<EnteringSubscriber>(*configuration);
};

TEST_F(LockOrder, APublisherIsNotLockedWhileItCallsOnSubscribe) {
    EXPECT_FALSE(publisherIsLockedDuring([this] { publisher->subscribe(subscriber); }));
}

TEST_F(LockOrder, APublisherIsNotLockedWhileItDeliversARequestedValue) {
    publisher->onNext(0);
    publisher->subscribe(subscriber);
    EXPECT_FALSE(publisherIsLockedDuring([this] { subscriber->request(); }));
    EXPECT_EQ(1, subscriber->values);
}

TEST_F(LockOrder, APublisherIsNotLockedWhileACancellationRemovesItsStream) {
    publisher->subscribe(subscriber);
    EXPECT_FALSE(publisherIsLockedDuring([this] { subscriber->cancel(); }));
}

TEST_F(LockOrder, APublisherIsNotLockedWhileAContinuationOfItsCompletionRuns) {
    publisher->subscribe(subscriber);
    bool completed = true;
    publisher->completionFuture().then([&](connector::Future<bool>& completion) {
        configuration->has("x").get();
        completed = completion.get();
    });
    EXPECT_FALSE(publisherIsLockedDuring([this] { subscriber->cancel(); }));
    EXPECT_FALSE(completed);
}

/// The same calls while another thread changes the option. The thread sanitizer reports an
/// inversion of the lock order here, even when no deadlock results.
class LockOrderUnderChanges : public testing::Test {
protected:
    using Action = std::function<void(Publisher&, EnteringSubscriber&)>;

    LockOrderUnderChanges() { configuration->set("x", 0).get(); }

    /// Changes the option on one thread, while this thread creates one stream after the other.
    void run(const Action& action) {
        std::atomic<bool> isOver{false};
        std::atomic<int> changes{0};
        std::thread changing([this, &isOver, &changes] {
            while (!isOver)
                configuration->set("x", ++changes).get();
        });
        for (; streams < rounds || changes < rounds; ++streams) {
            const auto subscriber = std::make_shared<EnteringSubscriber>(*configuration);
            const auto publisher = configuration->watchOption("x");
            publisher->subscribe(subscriber);
            action(*publisher, *subscriber);
            configuration->removeStream(streams); // the last owner is this thread, or a change
            subscribers.push_back(subscriber);
        }
        isOver = true;
        changing.join();
    }

    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    std::vector<std::shared_ptr<EnteringSubscriber>> subscribers;
    std::uint64_t streams = 0;
};

TEST_F(LockOrderUnderChanges, EveryRequestIsServedOnceAndEveryRemovedStreamCompletesOnce) {
    run([](Publisher&, EnteringSubscriber& subscriber) { subscriber.request(); });
    for (const auto& subscriber : subscribers) {
        EXPECT_EQ(1, subscriber->values);
        EXPECT_EQ(1, subscriber->completions);
    }
}

TEST_F(LockOrderUnderChanges, EveryCancellationRunsItsContinuationOnceAndCompletesNoStream) {
    std::atomic<std::uint64_t> continuations{0};
    run([&](Publisher& publisher, EnteringSubscriber& subscriber) {
        publisher.completionFuture().then([&](connector::Future<bool>&) {
            configuration->has("x").get();
            ++continuations;
        });
        subscriber.cancel();
    });
    EXPECT_EQ(streams, continuations);
    for (const auto& subscriber : subscribers)
        EXPECT_EQ(0, subscriber->completions);
}

} // namespace
