/// Dispatches a request to the service's handler for its class.
#pragma once

#include <connector/ServiceMessage.hpp>

#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

namespace connector {

/// @tparam Msg       the class of the request, derived from this
/// @tparam Provider  the interface of the service, with a handle for std::unique_ptr<Msg>&&
template <typename Msg, typename Provider>
class CONNECTOR_PLATFORM_EXPORT MessageAPI : public ServiceMessage<Provider> {
public:
    /// Calls the provider's handle for Msg with this message. Unless the handler keeps the message,
    /// it is destroyed before deliver returns or throws.
    /// @param owner  owns this message, and is empty afterwards. The objects are compared, although
    /// the
    ///               text of the failure speaks of types: another message of the same class fails,
    ///               too.
    /// @return what the handler returns. If `owner` owns another message, it keeps that one, and
    /// the
    ///         future has std::invalid_argument "Unable to deliver to service. Incorrect message
    ///         type. Expected: " + type of this message + " but found " + type of the other
    ///         message, both from std::type_info::name
    /// @throws std::bad_typeid if `owner` is empty
    /// @throws what the handler throws
    Future<std::unique_ptr<Message>> deliver(std::shared_ptr<Provider> provider,
                                             std::unique_ptr<Message>&& owner, Address&& address,
                                             std::shared_ptr<Context>&& context) override {
        if (owner.get() == this) {
            std::unique_ptr<Msg> request(static_cast<Msg*>(owner.release()));
            return provider->handle(std::move(request), std::move(address), std::move(context));
            // The request, which is this object, is destroyed now.
        }
        const Message* const held = owner.get();
        const std::type_info& heldType = typeid(*held); // throws if there is none
        return makeFailedFuture<std::unique_ptr<Message>>(std::invalid_argument(
            std::string("Unable to deliver to service. Incorrect message type. Expected: ") +
            typeid(*this).name() + " but found " + heldType.name()));
    }
};

} // namespace connector
