/// The changes of a configuration that ConfigurationImpl::plan can plan.
#pragma once

#include <connector/configuration/OptionValue.hpp>
#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>

namespace connector::configuration::planning {

/// Configuration::set
struct SetOption {
    std::string key;
    OptionValue value;
    std::optional<std::string> source = std::nullopt; ///< the name; nothing for set without a name
};

/// ConfigurationImpl::addSource
struct AddSource {
    std::string name;
    std::string group;
    int order;
    bool readOnly;
    std::shared_ptr<ConfigurationSource> source; ///< only read; its watcher is not replaced
};

/// Configuration::removeSource
struct RemoveSource {
    std::string name;
};

/// Sources that replace all of their entries, as files do that are reloaded.
struct ReplaceTables {
    using Table = std::unordered_map<std::string, OptionValue>; ///< by the keys of the source

    std::map<std::string, Table> tables; ///< by the names of the sources
};

using Change = std::variant<SetOption, AddSource, RemoveSource, ReplaceTables>;

} // namespace connector::configuration::planning
