/// Collects the values of a configuration's stream in a list.
#pragma once

#include <connector/configuration/ConfigurationImpl.hpp>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <vector>

namespace test {

/// Records every value. All functions may be called from several threads concurrently.
class ValueList
    : public connector::reactive_streams::Subscriber<connector::configuration::OptionValue> {
public:
    using OptionValue = connector::configuration::OptionValue;
    using Subscription = connector::reactive_streams::Subscription;

    void onSubscribe(std::weak_ptr<Subscription> subscription) override {
        subscription.lock()->request(std::numeric_limits<std::uint64_t>::max());
    }
    void onNext(const OptionValue& value) override {
        const std::lock_guard<std::mutex> lock(mutex);
        values.push_back(value);
        changed.notify_all();
    }
    void onComplete() override {}
    void onError(std::exception_ptr) override {}

    std::vector<OptionValue> all() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return values;
    }

    /// Waits, at most half a minute, until the last value is this one.
    /// @return whether it is
    bool waitFor(const OptionValue& value) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(30),
                                [&] { return !values.empty() && values.back() == value; });
    }

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<OptionValue> values;
};

/// A watched option; its stream exists until this object is destroyed.
struct Watched {
    std::shared_ptr<ValueList> values;
    std::shared_ptr<void> stream;
};

inline Watched watch(connector::configuration::Configuration& configuration,
                     const std::string& key) {
    auto stream = configuration.watchOption(key);
    auto values = std::make_shared<ValueList>();
    stream->subscribe(values);
    return {std::move(values), std::move(stream)};
}

} // namespace test
