/// A subscriber of a watched option that records everything it receives.
#pragma once

#include <connector/configuration/ConfigurationImpl.hpp>

#include <boost/variant/get.hpp>

#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace test {

inline constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

/// Receives values of type int. May be called by several threads at once.
class RecordingSubscriber
    : public connector::reactive_streams::Subscriber<connector::configuration::OptionValue> {
public:
    using Subscription = connector::reactive_streams::Subscription;
    using OptionValue = connector::configuration::OptionValue;

    /// @param newDemand  the number of values to request on subscription
    explicit RecordingSubscriber(std::uint64_t newDemand = unlimited) : demand(newDemand) {}

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
        subscription = std::move(newSubscription);
        if (demand > 0)
            request(demand);
    }

    void onNext(const OptionValue& value) override {
        const int number = boost::get<int>(value);
        {
            const std::lock_guard<std::mutex> lock(mutex);
            received.push_back(number);
        }
        if (inOnNext)
            inOnNext(number);
    }

    void onComplete() override {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            ++completed;
        }
        if (inOnComplete)
            inOnComplete();
    }

    void onError(std::exception_ptr) override {
        const std::lock_guard<std::mutex> lock(mutex);
        ++failed;
    }

    void request(std::uint64_t count) {
        if (const auto alive = subscription.lock())
            alive->request(count);
    }

    void cancel() {
        if (const auto alive = subscription.lock())
            alive->cancel();
    }

    std::vector<int> values() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return received;
    }

    int completions() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return completed;
    }

    int failures() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return failed;
    }

    std::function<void(int value)> inOnNext; ///< called after the value is recorded
    std::function<void()> inOnComplete;

private:
    const std::uint64_t demand;
    std::weak_ptr<Subscription> subscription;

    mutable std::mutex mutex;
    std::vector<int> received; // guarded by mutex
    int completed = 0;         // guarded by mutex
    int failed = 0;            // guarded by mutex
};

/// Subscribes to a key. Only the configuration keeps the publisher alive.
inline std::shared_ptr<RecordingSubscriber>
watch(connector::configuration::Configuration& configuration, const std::string& key,
      std::function<void(int)> inOnNext = nullptr, std::uint64_t demand = unlimited) {
    auto subscriber = std::make_shared<RecordingSubscriber>(demand);
    subscriber->inOnNext = std::move(inOnNext);
    configuration.watchOption(key)->subscribe(subscriber);
    return subscriber;
}

} // namespace test
