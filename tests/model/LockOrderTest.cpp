/// The configuration is locked before a publisher, never the other way round: a change takes its
/// locks in that order, while other threads enter the configuration from everything that a publisher
/// calls. With a publisher's lock held around such a call, the two would wait for each other for good,
/// and the thread sanitizer reports the inversion even when they happen not to meet.

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

namespace {

constexpr int rounds = 2000;

/// Enters the configuration whenever it is called.
class EnteringSubscriber final : public connector::reactive_streams::Subscriber<OptionValue> {
public:
    using Subscription = connector::reactive_streams::Subscription;

    explicit EnteringSubscriber(ConfigurationImpl& newConfiguration)
        : configuration(newConfiguration) {}

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
        subscription = std::move(newSubscription);
        configuration.has("x");
    }
    void onNext(const OptionValue&) override { configuration.get("x"); }
    void onComplete() override { configuration.keys(); }
    void onError(std::exception_ptr) override {}

    void request() {
        if (const auto alive = subscription.lock())
            alive->request(1);
    }
    void cancel() {
        if (const auto alive = subscription.lock())
            alive->cancel();
    }

private:
    ConfigurationImpl& configuration;
    std::weak_ptr<Subscription> subscription;
};

class LockOrder : public testing::Test {
protected:
    using Publisher = ConfigurationImpl::OptionPublisher;
    using Action = std::function<void(Publisher&, EnteringSubscriber&)>;

    LockOrder() { configuration->set("x", 0); }

    /// Changes the option on one thread while this one takes one stream after the other.
    /// @return the number of streams
    std::uint64_t besideChanges(const Action& action) {
        std::atomic<bool> isOver{false};
        std::atomic<int> changes{0};
        std::thread changing([this, &isOver, &changes] {
            while (!isOver)
                configuration->set("x", ++changes);
        });
        std::uint64_t id = 0;
        for (; id < rounds || changes < rounds; ++id) {
            const auto subscriber = std::make_shared<EnteringSubscriber>(*configuration);
            const auto publisher = configuration->watchOption("x");
            publisher->subscribe(subscriber);
            action(*publisher, *subscriber);
            configuration->removeStream(id); // the last owner is this thread, or a change
        }
        isOver = true;
        changing.join();
        return id;
    }

    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_F(LockOrder, HoldsWhenAStreamIsCancelledWhileAnotherThreadSets) {
    besideChanges([](Publisher&, EnteringSubscriber& subscriber) { subscriber.cancel(); });
}

TEST_F(LockOrder, HoldsWhenAValueIsRequestedWhileAnotherThreadSets) {
    besideChanges([](Publisher&, EnteringSubscriber& subscriber) { subscriber.request(); });
}

TEST_F(LockOrder, HoldsWhenAPublisherIsDestroyedWhileAnotherThreadSets) {
    besideChanges([](Publisher&, EnteringSubscriber&) {});
}

TEST_F(LockOrder, HoldsWhenACompletionIsToldWhileAnotherThreadSets) {
    std::atomic<std::uint64_t> told{0};
    const std::uint64_t streams =
        besideChanges([this, &told](Publisher& publisher, EnteringSubscriber& subscriber) {
            publisher.completionFuture().then([this, &told](connector::Future<bool>&) {
                configuration->has("x");
                ++told;
            });
            subscriber.cancel();
        });
    EXPECT_EQ(told, streams);
}

} // namespace
