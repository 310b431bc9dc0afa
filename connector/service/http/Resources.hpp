/// What there is to be had over HTTP, whoever asks.
#pragma once

#include <connector/service/http/Response.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <functional>
#include <mutex>
#include <string>
#include <variant>

namespace connector::service {

/// The request is for the values of this option as they come.
struct WatchRequest {
    std::string key;
};

using Answer = std::variant<Response, WatchRequest>;

/// All operations may be called from any thread.
class Resources {
public:
    Resources(const MessageService& newService,
              connector::configuration::ConfigurationImpl& newConfiguration,
              const Secrets& newSecrets)
        : service(newService), configuration(newConfiguration), secrets(newSecrets) {}

    /// @param pathAndQuery  as they came
    /// @param readBody      called where a body is wanted, once
    /// @throws HttpFailure 400, 404 or 405, and what readBody throws
    Answer answer(const std::string& method, const std::string& pathAndQuery,
                  const std::function<std::string()>& readBody) const;

private:
    Response answerMessage(const std::string& body) const;
    Response allOptions() const;
    Response option(const std::string& key) const;

    const MessageService& service;
    connector::configuration::ConfigurationImpl& configuration;
    const Secrets& secrets;
    mutable std::mutex building; // of a list of all options
};

} // namespace connector::service
