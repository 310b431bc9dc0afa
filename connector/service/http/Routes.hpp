/// The HTTP routes.
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

/// The client asks for the values of an option as server-sent events.
struct WatchRequest {
    std::string key;
};

using RouteResult = std::variant<Response, WatchRequest>;

/// All operations may be called from any thread.
class Routes {
public:
    /// All arguments must outlive this object.
    Routes(const MessageService& newService, configuration::ConfigurationImpl& newConfiguration,
           const Secrets& newSecrets)
        : service(newService), configuration(newConfiguration), secrets(newSecrets) {}

    /// @param pathAndQuery  not decoded
    /// @param readBody      called at most once, and only by a route that needs the body
    /// @throws HttpError  status 400, 404 or 405
    /// @throws whatever readBody and the configuration throw
    RouteResult handle(const std::string& method, const std::string& pathAndQuery,
                       const std::function<std::string()>& readBody) const;

private:
    Response executeMessage(const std::string& body) const;
    Response allOptions() const;
    Response option(const std::string& key) const;
    std::string optionJson(const std::string& key) const;

    const MessageService& service;
    configuration::ConfigurationImpl& configuration;
    const Secrets& secrets;
    mutable std::mutex listing; // locked while a list of all options is built
};

} // namespace connector::service
