#include <connector/configuration/Configuration.hpp>

namespace connector {

namespace configuration {

Configuration::~Configuration() = default;

} // namespace configuration

template class detail::SharedFutureState<configuration::OptionValue>;
template class Future<configuration::OptionValue>;
template class detail::SharedFutureState<configuration::Option>;
template class Future<configuration::Option>;
template class reactive_streams::CachedValuePublisher<configuration::OptionValue,
                                                      std::function<void()>>;

} // namespace connector
