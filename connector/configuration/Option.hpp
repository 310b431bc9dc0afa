/// A value together with the source that supplies it.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <string>

namespace connector::configuration {

struct Option {
    std::string key;    ///< as the caller asked for it, with the source's group in front
    std::string source; ///< the registered name of the source that supplies the value
    OptionValue value;  ///< what that source holds
};

} // namespace connector::configuration

namespace connector {

// Instantiated in the library; see OptionValue.hpp.
extern template class CONNECTOR_EXPORT detail::SharedFutureState<configuration::Option>;
extern template class CONNECTOR_EXPORT Future<configuration::Option>;

} // namespace connector
