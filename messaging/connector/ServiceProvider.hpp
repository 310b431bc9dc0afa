/// The interface of all services for the message framework.
#pragma once

#include <connector/Address.hpp>
#include <connector/Context.hpp>
#include <connector/Message.hpp>
#include <connector/async/Future.hpp>
#include <connector/common/Lifecycle.hpp>
#include <connector/platform/Export.hpp>

#include <memory>

namespace connector {

class CONNECTOR_PLATFORM_EXPORT ServiceProvider : public common::Lifecycle {
public:
    ServiceProvider();
    ~ServiceProvider() override;

    /// Executes a message.
    /// @return the reply, or a failure of the framework; see ServiceProviderAPI
    virtual Future<std::unique_ptr<Message>> dispatch(std::unique_ptr<Message>&& message,
                                                      Address&& address,
                                                      std::shared_ptr<Context>&& context) = 0;
};

} // namespace connector
