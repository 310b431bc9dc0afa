#include <connector/configuration/service/ConfigurationServiceProvider.hpp>

namespace connector {

template class detail::SharedFutureState<std::unique_ptr<Message>>;
template class Future<std::unique_ptr<Message>>;
template class ServiceMessage<configuration::ConfigurationServiceProvider>;
template class ServiceProviderAPI<configuration::ConfigurationServiceProvider>;

namespace configuration {

ConfigurationServiceProvider::~ConfigurationServiceProvider() = default;

} // namespace configuration
} // namespace connector
