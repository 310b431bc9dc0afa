/// How a request reaches the operation of the service that is meant for it.
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
    /// Calls the provider's handle for Msg with this message. Unless the handler keeps it, the
    /// message is gone when deliver returns or throws.
    /// @param owner  owns this very message, and nothing afterwards. The question is whether it is
    ///               the same object, although the text of the failure speaks of a type: another
    ///               message of the same class is as wrong.
    /// @return what the handler returns; or, while `owner` keeps what it has, std::invalid_argument
    ///         "Unable to deliver to service. Incorrect message type. Expected: " + type of this
    ///         message + " but found " + type of the other, as std::type_info::name has them
    /// @throws std::bad_typeid when `owner` is empty
    /// @throws what the handler throws
    Future<std::unique_ptr<Message>> deliver(std::shared_ptr<Provider> provider,
                                             std::unique_ptr<Message>&& owner, Address&& address,
                                             std::shared_ptr<Context>&& context) override {
        if (owner.get() == this) {
            std::unique_ptr<Msg> request(static_cast<Msg*>(owner.release()));
            return provider->handle(std::move(request), std::move(address), std::move(context));
            // The request, and with it this object, is gone now.
        }
        const Message* const held = owner.get();
        const std::type_info& heldType = typeid(*held); // throws when there is none
        return makeFailedFuture<std::unique_ptr<Message>>(std::invalid_argument(
            std::string("Unable to deliver to service. Incorrect message type. Expected: ") +
            typeid(*this).name() + " but found " + heldType.name()));
    }
};

} // namespace connector
