/// The values of one watched option, on their way to one HTTP client: from the publisher to
/// EventConnection.
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

/// Holds at most one value and requests the next one only when that has been sent. In the meantime
/// the publisher keeps the newest value and drops the older ones.
///
/// Values arrive on the thread that changes the option, which holds the configuration's mutex. So
/// they are only stored here; another thread sends them. The configuration and `wake` are never
/// called with `mutex` locked.
class EventStream : public reactive_streams::Subscriber<OptionValue> {
public:
    /// @param newConfiguration  must outlive this object
    /// @param newWake           called from any thread when a value has arrived or the stream has
    ///                          ended
    EventStream(configuration::ConfigurationImpl& newConfiguration, std::string newKey,
                std::function<void()> newWake)
        : configuration(newConfiguration), key(std::move(newKey)), wake(std::move(newWake)) {}

    void onSubscribe(std::weak_ptr<reactive_streams::Subscription> newSubscription) override;
    void onNext(const OptionValue& value) override;
    void onComplete() override { end(); }
    void onError(std::exception_ptr) override { end(); }

    /// @return the value that has arrived and has not been taken yet, if there is one
    std::optional<Option> take();

    /// Must be called when the value that was taken has been sent.
    void requestNext();

    /// Ends the stream.
    void cancel();

    bool hasEnded() const;

private:
    void end();
    std::string currentSource() const;

    configuration::ConfigurationImpl& configuration;
    const std::string key;
    const std::function<void()> wake;
    std::weak_ptr<reactive_streams::Subscription>
        subscription; // set once, before any value arrives

    mutable std::mutex mutex; // guards the members below
    std::optional<Option> pending;
    bool ended = false;
};

/// @return a server-sent event: a line of JSON and an empty line
std::string formatEvent(const Option& option);

} // namespace connector::service
