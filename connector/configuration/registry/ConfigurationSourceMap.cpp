#include <connector/configuration/registry/ConfigurationSourceMap.hpp>

#include <utility>

namespace connector::configuration::detail {

ConfigurationSourceMap::ConfigurationSourceMap(const std::string& newName,
                                               const std::string& newGroup, int newOrder,
                                               bool newReadOnly,
                                               std::shared_ptr<ConfigurationSource> newSource)
    : name(newName), group(newGroup), order(newOrder), readOnly(newReadOnly),
      source(std::move(newSource)), table(*source) {
}

} // namespace connector::configuration::detail
