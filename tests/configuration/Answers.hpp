/// Short ways to say what a configuration answers.
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

/// @return the int in a result; throws when there is a failure or another type in it
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
