/// Shorthands for creating and sending messages, and for reading replies.
#pragma once

#include <connector/ServiceProvider.hpp>
#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationGet.hpp>
#include <connector/configuration/service/ConfigurationKeys.hpp>
#include <connector/configuration/service/ConfigurationKeysResponse.hpp>
#include <connector/configuration/service/ConfigurationOptionResponse.hpp>
#include <connector/configuration/service/ConfigurationSet.hpp>

#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

namespace test {

using MessagePtr = std::unique_ptr<connector::Message>;
using Reply = connector::Future<MessagePtr>;

/// Sends a message. The caller keeps it when the service does not take it.
inline Reply dispatch(connector::ServiceProvider& provider, MessagePtr& message) {
    return provider.dispatch(std::move(message), connector::Address(), nullptr);
}

inline Reply dispatch(connector::ServiceProvider& provider, MessagePtr&& message) {
    return dispatch(provider, message);
}

/// Creates a message and sends it.
template <typename Msg, typename... Arguments>
Reply send(connector::ServiceProvider& provider, Arguments&&... arguments) {
    return dispatch(provider, std::make_unique<Msg>(std::forward<Arguments>(arguments)...));
}

/// @return the message as a `Msg`. Throws std::bad_cast when it is of another class
template <typename Msg>
const Msg& as(const MessagePtr& message) {
    return dynamic_cast<const Msg&>(*message);
}

/// @return the option in a reply. Throws when the reply has none
inline connector::configuration::Option optionIn(Reply reply) {
    const MessagePtr message = reply.get();
    const auto& response = as<connector::configuration::ConfigurationOptionResponse>(message);
    if (!response.option)
        throw std::logic_error("The reply has no option.");
    return *response.option;
}

inline std::set<std::string> keysIn(Reply reply) {
    return as<connector::configuration::ConfigurationKeysResponse>(reply.get()).keys;
}

/// @return the class of a message, as std::type_info names it
inline std::string classOf(const MessagePtr& message) {
    const connector::Message& held = *message;
    return typeid(held).name();
}

/// A request that records its destruction.
template <typename Msg>
class Tracked : public Msg {
public:
    template <typename... Arguments>
    explicit Tracked(bool& newIsDestroyed, Arguments&&... arguments)
        : Msg(std::forward<Arguments>(arguments)...), isDestroyed(newIsDestroyed) {}
    ~Tracked() override { isDestroyed = true; }

private:
    bool& isDestroyed;
};

using TrackedGet = Tracked<connector::configuration::ConfigurationGet>;

} // namespace test
