/// Accepts the messages of one service and refuses all others.
#pragma once

#include <connector/ServiceMessage.hpp>
#include <connector/ServiceProvider.hpp>

#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

namespace connector {

/// @tparam Provider  the interface of the service, derived from this
template <typename Provider>
class CONNECTOR_PLATFORM_EXPORT ServiceProviderAPI : public std::enable_shared_from_this<Provider>,
                                                     public ServiceProvider {
public:
    /// Delivers a request to this service. May be called from any thread, which executes the
    /// request before the call returns. Takes no lock of its own.
    /// @return the reply. If the service does not run, the future has std::runtime_error
    ///         "Service exists but is not running."; if the message is for another service, it has
    ///         std::invalid_argument "Incorrect message type. Expected: " + type of this service's
    ///         messages + " but found " + type of the message, both from std::type_info::name. In
    ///         both cases `message` is left unchanged.
    /// @throws std::bad_typeid if the service runs and `message` is empty
    /// @throws std::bad_weak_ptr if no std::shared_ptr owns the service
    /// @throws what the service's handler throws; failures of a handler are not in the future
    Future<std::unique_ptr<Message>> dispatch(std::unique_ptr<Message>&& message, Address&& address,
                                              std::shared_ptr<Context>&& context) override {
        if (!isRunning())
            return makeFailedFuture<std::unique_ptr<Message>>(
                std::runtime_error("Service exists but is not running."));
        Message* const received = message.get();
        const std::type_info& receivedType = typeid(*received); // throws if there is none
        auto* const request = dynamic_cast<ServiceMessage<Provider>*>(received);
        if (request == nullptr)
            return makeFailedFuture<std::unique_ptr<Message>>(std::invalid_argument(
                std::string("Incorrect message type. Expected: ") +
                typeid(ServiceMessage<Provider>).name() + " but found " + receivedType.name()));
        return request->deliver(this->shared_from_this(), std::move(message), std::move(address),
                                std::move(context));
    }
};

} // namespace connector
