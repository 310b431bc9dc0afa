/// The key functions of the interfaces, and the templates that are instantiated for the core's types.
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/sources/ConfigurationSource.hpp>

namespace connector {

namespace configuration {

Configuration::~Configuration() = default;
ConfigurationSource::~ConfigurationSource() = default;

} // namespace configuration

template class detail::SharedFutureState<configuration::OptionValue>;
template class Future<configuration::OptionValue>;
template class detail::SharedFutureState<configuration::Option>;
template class Future<configuration::Option>;
template class reactive_streams::CachedValuePublisher<configuration::OptionValue,
                                                      std::function<void()>>;

} // namespace connector
