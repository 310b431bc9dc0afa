/// The configuration as a service of the message framework.
#pragma once

#include <connector/ServiceProviderAPI.hpp>
#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationGet.hpp>
#include <connector/configuration/service/ConfigurationKeys.hpp>
#include <connector/configuration/service/ConfigurationSet.hpp>
#include <connector/configuration/service/Declarations.hpp>

#include <memory>

namespace connector {

extern template class ServiceProviderAPI<configuration::ConfigurationServiceProvider>;

namespace configuration {

/// The handlers that requests call when they are delivered. The order of the operations is part
/// of the binary interface.
///
/// A handler executes its request on the calling thread and returns a future that is resolved with
/// the reply. Failures of the request are thrown. The request stays with the caller. A handler that
/// is called directly, without dispatch, does not check whether the service is running.
class CONNECTOR_EXPORT ConfigurationServiceProvider
    : public ServiceProviderAPI<ConfigurationServiceProvider> {
public:
    using Reply = Future<std::unique_ptr<Message>>;

    ~ConfigurationServiceProvider() override;

    /// @return a ConfigurationOptionResponse
    virtual Reply handle(std::unique_ptr<ConfigurationGet>&& request, Address&& address,
                         std::shared_ptr<Context>&& context) = 0;

    /// @return a ConfigurationOptionResponse
    virtual Reply handle(std::unique_ptr<ConfigurationSet>&& request, Address&& address,
                         std::shared_ptr<Context>&& context) = 0;

    /// @return a ConfigurationKeysResponse
    virtual Reply handle(std::unique_ptr<ConfigurationKeys>&& request, Address&& address,
                         std::shared_ptr<Context>&& context) = 0;

    /// @return a bare Message
    virtual Reply handle(std::unique_ptr<AddPropertyFileSource>&& request, Address&& address,
                         std::shared_ptr<Context>&& context) = 0;
};

} // namespace configuration
} // namespace connector
