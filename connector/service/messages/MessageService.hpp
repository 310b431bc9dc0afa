/// The configuration service for clients that speak JSON: it turns the text of a request into the
/// text of a reply.
#pragma once

#include <connector/service/messages/Reply.hpp>

#include <connector/configuration/json/ConfigurationJsonSerialization.hpp>
#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>
#include <connector/json/JsonSerializerImpl.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace connector::service {

/// What an Authorizer decided about a message.
struct Decision {
    std::optional<std::string> refusal;    ///< the reason if the message is refused
    std::shared_ptr<const void> keepAlive; ///< released only after the message has been executed
    bool masksValue = false;               ///< the reply must not show the option's value
    bool isTooLarge = false; ///< with a refusal: what the message would load is too large
};

/// Decides whether a message may be executed. May modify the message, to restrict it to exactly
/// what was checked. Called from the threads that call MessageService::reply, possibly at the same
/// time.
using Authorizer = std::function<Decision(Message&)>;

/// All operations may be called from any thread.
class MessageService {
public:
    /// @param newAuthorizer    asked about every message; without one, everything is allowed
    /// @param newMissingOrder  the order of an AddPropertyFileSource whose "order" is missing or
    ///                         null; without one, this is 0
    explicit MessageService(const std::shared_ptr<configuration::Configuration>& configuration,
                            Authorizer newAuthorizer = {}, std::optional<int> newMissingOrder = {});
    ~MessageService();

    /// Executes a request. Every failure, whatever the request, is reported in the reply.
    Reply reply(const std::string& request) const;

    /// Makes all later messages fail with Outcome::Stopped.
    void stop();

private:
    class Exchange;

    const std::shared_ptr<json::JsonSerializerImpl> serializer;
    const configuration::ConfigurationJsonSerialization serialization;
    const std::shared_ptr<configuration::ConfigurationServiceProviderImpl> provider;
    const Authorizer authorizer;
    const std::optional<int> missingOrder;
};

} // namespace connector::service
