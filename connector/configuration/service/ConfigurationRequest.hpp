/// What the requests of the configuration service have in common.
#pragma once

#include <connector/MessageAPI.hpp>
#include <connector/configuration/service/Declarations.hpp>

#include <memory>

namespace connector {

// Instantiated in the library, as are the MessageAPI of each request and the provider's base.
extern template class detail::SharedFutureState<std::unique_ptr<Message>>;
extern template class Future<std::unique_ptr<Message>>;
extern template class ServiceMessage<configuration::ConfigurationServiceProvider>;

namespace configuration {

/// The base of the request `Msg`.
template <typename Msg>
using ConfigurationRequest = MessageAPI<Msg, ConfigurationServiceProvider>;

} // namespace configuration
} // namespace connector
