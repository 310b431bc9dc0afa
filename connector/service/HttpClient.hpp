/// The configuration of another process, over HTTP.
#pragma once

#include <connector/service/HttpClientOptions.hpp>
#include <connector/service/ServiceError.hpp>

#include <connector/configuration/Option.hpp>
#include <connector/configuration/SourceAnswer.hpp>
#include <connector/service/Export.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace connector::service {

/// Reads, changes and follows the options of a service, see HttpService. Each function blocks until
/// the service has answered. One connection is kept for all requests, and opened again when the
/// service has closed it; each watch has a connection of its own.
///
/// All functions may be called from any thread, also at the same time; requests then take turns.
/// Keys and values must be valid UTF-8, which is all that JSON can carry. What is not valid in the
/// service arrives with U+FFFD in place of each invalid byte.
///
/// @throws ServiceError from all functions that ask the service, with status 0:
///         "Cannot connect to " + url + ": " + reason; "No response from " + url + ": " + reason;
///         "Response of " + url + " is not understood: " + reason;
///         "Text is not valid UTF-8: " + key, or "Value is not valid UTF-8: " + key, without asking
///         the service.
///         With the status of a response that reports a failure: the detail of the problem
///         document, or the status line of a response without one.
class CONNECTOR_SERVICE_EXPORT HttpClient {
public:
    using Option = configuration::Option;
    using OptionValue = configuration::OptionValue;
    using SourceAnswer = configuration::SourceAnswer;

    /// Called with each value, on the thread that has called watch. May call the client, except
    /// for its destructor.
    using OnOption = std::function<void(const Option&)>;

    /// Called with the reason whenever a watch has lost the service, before it connects again.
    /// On the thread that has called watch.
    using OnLoss = std::function<void(const ServiceError&)>;

    /// Reads the files of the options. Does not connect yet.
    /// @throws std::invalid_argument "Not the URL of a service: " + url
    /// @throws std::runtime_error "Token file could not be read: " + path and others of that file;
    ///         "TLS file could not be used: " + path + ": " + reason
    explicit HttpClient(const HttpClientOptions& options);

    /// No function may be running.
    ~HttpClient();

    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    /// @return the option with its value, even if it is secret; nothing if there is none
    std::optional<Option> get(const std::string& key);

    /// @return the options whose keys begin with the prefix, sorted by key, as of one moment; the
    ///         values of secrets are masked
    std::vector<Option> list(const std::string& prefix = {});

    /// @return the keys that begin with the prefix
    std::set<std::string> keys(const std::string& prefix = {});

    /// @return what each source has for the key, in the order of consultation; masked for secrets
    std::vector<SourceAnswer> explain(const std::string& key);

    /// Sets an option. The service must allow it.
    void set(const std::string& key, const OptionValue& value);

    /// Removes the value that `set` would replace. The service must allow it.
    /// @return whether there was one
    bool reset(const std::string& key);

    /// Follows options until stopWatching is called: reports their values, then every value that
    /// they get. Of values that follow each other quickly, only the last may be reported. The
    /// values of secrets are masked, and the removal of an option is not reported. Values are
    /// reported in the order in which they were set.
    ///
    /// When the service is lost, it connects again and goes on with what has changed since, after
    /// a wait that grows from HttpClientOptions::minRetry to maxRetry.
    /// @param onLoss  may be empty
    /// @throws ServiceError as the class says, from the first attempt to connect, and when the
    ///         service refuses to be watched: with a status from 400 to 499, except for 408 and 429
    /// @throws what the handlers throw
    void watch(const WatchedOptions& watched, const OnOption& onOption, const OnLoss& onLoss = {});

    /// Ends all calls of watch, those in progress and those that follow. Does not wait for them.
    /// A call that looks up the name of the host ends afterwards.
    void stopWatching() noexcept;

private:
    class Impl;
    const std::unique_ptr<Impl> impl;
};

} // namespace connector::service
