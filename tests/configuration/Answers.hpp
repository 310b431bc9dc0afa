/// Shorthands for queries to a configuration.
#pragma once

#include <connector/configuration/ConfigurationImpl.hpp>

#include <boost/variant/get.hpp>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace test {

inline std::shared_ptr<connector::configuration::ConfigurationImpl> makeConfiguration() {
    return std::make_shared<connector::configuration::ConfigurationImpl>();
}

/// @return the int that the future holds. Throws when it holds a failure or another type
inline int intIn(connector::Future<connector::configuration::OptionValue> future) {
    return boost::get<int>(future.get());
}

inline int intOf(connector::configuration::Configuration& configuration, const std::string& key) {
    return intIn(configuration.get(key));
}

inline bool has(connector::configuration::Configuration& configuration, const std::string& key) {
    return configuration.has(key).get();
}

/// @return the name of the source that supplies the key
inline std::string supplierOf(connector::configuration::Configuration& configuration,
                              const std::string& key) {
    return configuration.getOption(key).get().source;
}

/// @return the names of all sources, in the order of consultation
inline std::vector<std::string>
sourcesOf(connector::configuration::ConfigurationImpl& configuration) {
    std::vector<std::string> names;
    for (const auto& answer : configuration.explain(""))
        names.push_back(answer.name);
    return names;
}

} // namespace test
