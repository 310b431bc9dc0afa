/// The configuration of a running process, over HTTP.
#pragma once

#include <connector/service/HttpOptions.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/service/Export.hpp>

#include <memory>
#include <string>
#include <vector>

namespace connector::service {

/// Serves a configuration to other processes, on threads of its own. Clients may read everything
/// but secrets; every change must be allowed by an option. The routes are described in
/// docs/messages.md.
///
/// The functions may be called from any thread, but not at the same time, except for those that say
/// otherwise. Do not call them from a callback of the configuration, such as a subscriber.
class CONNECTOR_SERVICE_EXPORT HttpService {
public:
    /// Reads the files of the options, and listens. Clients are served after start only.
    /// @throws std::invalid_argument "A null configuration cannot be served."
    /// @throws std::runtime_error "Cannot listen on " + address + ": " + reason;
    ///         "Token file could not be read: " + path and others of readToken's;
    ///         "Not a directory: " + path; "TLS file could not be used: " + path + ": " + reason;
    ///         "TLS key does not fit the certificate: " + path
    HttpService(const std::shared_ptr<configuration::ConfigurationImpl>& configuration,
                const HttpOptions& options);

    /// Stops, without waiting for requests in progress, except for those that are calling the
    /// configuration: such a call cannot be interrupted.
    ~HttpService();

    HttpService(const HttpService&) = delete;
    HttpService& operator=(const HttpService&) = delete;

    /// Serves clients from now on, on threads of its own. Does nothing the second time, nor after
    /// stop: a service that was stopped stays stopped.
    /// @throws std::system_error  no thread can be started
    void start();

    /// Accepts no more connections, ends all event streams with an event, and waits for the
    /// requests in progress, at most for HttpLimits::shutdown. If a call of the configuration takes
    /// longer, it waits for that call. Does nothing the second time.
    void stop();

    /// @return where clients reach the service, in the order of the options: "http://HOST:PORT",
    ///         "https://HOST:PORT" or "unix:PATH", with the port that was chosen
    std::vector<std::string> urls() const;

    /// Uses the TLS files as they are now, for connections from now on. May be called while other
    /// functions run.
    /// @throws std::runtime_error  as the constructor; the files that were read before stay in use
    void reloadTls();

    /// Counts a file that was read again, for GET /metrics. May be called while other functions
    /// run.
    void countReload(bool succeeded) noexcept;

private:
    class Impl;
    const std::unique_ptr<Impl> impl;
};

} // namespace connector::service
