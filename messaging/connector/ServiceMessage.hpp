/// A message that delivers itself to a service.
#pragma once

#include <connector/Address.hpp>
#include <connector/Context.hpp>
#include <connector/Message.hpp>
#include <connector/async/Future.hpp>

#include <memory>

namespace connector {

/// @tparam Provider  the interface of the service
template <typename Provider>
class CONNECTOR_PLATFORM_EXPORT ServiceMessage : public Message {
public:
    /// Delivers this message to the provider; see MessageAPI.
    virtual Future<std::unique_ptr<Message>> deliver(std::shared_ptr<Provider> provider,
                                                     std::unique_ptr<Message>&& owner,
                                                     Address&& address,
                                                     std::shared_ptr<Context>&& context) = 0;
};

} // namespace connector
