/// From an option to those who watch it over HTTP: the side of the option.
#pragma once

#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/reactive_streams/Subscriber.hpp>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace connector::service {

/// Takes one value at a time, and the next one only when that is gone: between them the publisher
/// keeps the newest and forgets the others.
///
/// Values come on the thread that changes the option, which holds the configuration's mutex, so they
/// are only put down here. No operation calls the configuration or `wake` under `mutex`.
class EventStream : public connector::reactive_streams::Subscriber<OptionValue> {
public:
    /// @param newWake  called from any thread when there is something to take
    EventStream(connector::configuration::ConfigurationImpl& newConfiguration, std::string newKey,
                std::function<void()> newWake)
        : configuration(newConfiguration), key(std::move(newKey)), wake(std::move(newWake)) {}

    void
    onSubscribe(std::weak_ptr<connector::reactive_streams::Subscription> newSubscription) override;
    void onNext(const OptionValue& value) override;
    void onComplete() override { end(); }
    void onError(std::exception_ptr) override { end(); }

    /// @return the value that waits, if there is one
    std::optional<Option> take();

    /// Says that the taken value is gone.
    void requestNext();

    /// No value comes any more.
    void cancel();

    bool hasEnded() const;

private:
    void end();
    std::string sourceNow() const;

    connector::configuration::ConfigurationImpl& configuration;
    const std::string key;
    const std::function<void()> wake;
    std::weak_ptr<connector::reactive_streams::Subscription> subscription; // set once, first of all

    mutable std::mutex mutex; // guards what follows
    std::optional<Option> waiting;
    bool ended = false;
};

/// @return a server-sent event, which is one line of JSON and an empty one
std::string eventOf(const Option& option);

} // namespace connector::service
