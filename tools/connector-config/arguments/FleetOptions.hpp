/// The grammar of fleet.
#pragma once

#include "arguments/FleetArguments.hpp"

#include <connector/service/text/Secrets.hpp>

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace connector_config {

/// Declares the commands of fleet to CLI11, which fills this object.
class FleetOptions {
public:
    /// @param command  the command fleet, which must outlive this object
    void declare(CLI::App& command);

    /// @param secrets  keys whose values are masked in failures
    /// @throws WrongArguments, always if the program was built without connector::etcd
    FleetArguments collect(const connector::service::Secrets& secrets) const;

private:
    using Action = FleetArguments::Action;

    CLI::App* add(const char* name, Action action);

    CLI::App* fleet = nullptr;
    std::map<const CLI::App*, Action> actions;
    std::vector<std::string> assignments;
    std::vector<std::string> keys;
    std::string file;
    std::string format = "json";
    bool deletes = false;
    bool isDryRun = false;
};

} // namespace connector_config
