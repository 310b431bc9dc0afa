/// Follows the options of a service.
#pragma once

#include <connector/service/HttpClientOptions.hpp>
#include <connector/service/ServiceError.hpp>
#include <connector/service/client/ClientConnection.hpp>
#include <connector/service/client/EventStreamReader.hpp>
#include <connector/service/client/RetryDelay.hpp>
#include <connector/service/client/ServiceRequests.hpp>
#include <connector/service/client/Waiter.hpp>

#include <connector/configuration/Option.hpp>

#include <functional>
#include <optional>
#include <string>

namespace connector::service {

/// One call of HttpClient::watch.
class OptionFollower {
public:
    using OnOption = std::function<void(const configuration::Option&)>;
    using OnLoss = std::function<void(const ServiceError&)>;

    /// @param newWaiter  ends `run` when it is stopped; all arguments must outlive this object
    OptionFollower(const HttpClientOptions& newOptions, const ClientTarget& newTarget,
                   const ServiceRequests& newRequests, Waiter& newWaiter);

    /// @throws as HttpClient::watch
    void run(const WatchedOptions& watched, const OnOption& onOption, const OnLoss& onLoss);

private:
    void open(const WatchedOptions& watched);
    std::optional<configuration::Option> next(const WatchedOptions& watched);
    void readMore();
    void waitToReconnect();
    [[noreturn]] void failToUnderstand(const std::string& reason) const;

    const HttpClientOptions& options;
    const ClientTarget& target;
    const ServiceRequests& requests;
    Waiter& waiter;
    ClientConnection connection;
    std::optional<ClientParser> parser; // nothing while no stream is open
    EventStreamReader events;
    RetryDelay delay;
    std::string lastEventId;
    bool wasOpen = false;
};

} // namespace connector::service
