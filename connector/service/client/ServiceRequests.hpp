/// The requests that a client sends.
#pragma once

#include <connector/service/HttpClientOptions.hpp>
#include <connector/service/ServiceError.hpp>
#include <connector/service/client/ClientConnection.hpp>

#include <connector/configuration/OptionValue.hpp>

#include <optional>
#include <string>

namespace connector::service {

/// Makes requests to one service. Immutable.
class ServiceRequests {
public:
    /// @param newAuthority  for the header "Host"
    /// @param newToken      of the client; nothing for none
    ServiceRequests(std::string newAuthority, std::optional<std::string> newToken);

    /// @throws ServiceError "Text is not valid UTF-8: " + key, as do all functions with keys
    ClientRequest get(const std::string& key) const;

    /// @param prefix  any bytes; it may end inside a character
    ClientRequest list(const std::string& prefix) const;
    ClientRequest keys() const;
    ClientRequest explain(const std::string& key) const;

    /// @throws ServiceError "Text is not valid UTF-8: " + key; "Value is not valid UTF-8: " + key
    /// @throws ServiceError "Text is not valid UTF-16: " + key
    ClientRequest set(const std::string& key, const configuration::OptionValue& value) const;

    ClientRequest reset(const std::string& key) const;

    /// @param lastEventId  empty for none
    ClientRequest watch(const WatchedOptions& watched, const std::string& lastEventId) const;

private:
    using Verb = boost::beast::http::verb;

    ClientRequest make(Verb verb, const std::string& target, const std::string& body = {}) const;
    ClientRequest message(const std::string& type, const std::string& content) const;

    const std::string authority;
    const std::optional<std::string> token;
};

} // namespace connector::service
