/// The command line.
#pragma once

#include "arguments/Assignment.hpp"
#include "arguments/CheckArguments.hpp"
#include "arguments/Command.hpp"
#include "arguments/DiffOptions.hpp"
#include "arguments/FleetArguments.hpp"
#include "arguments/PlannedChange.hpp"
#include "arguments/SourceArgument.hpp"

#include <connector/service/HttpClientOptions.hpp>
#include <connector/service/HttpOptions.hpp>

#include <optional>
#include <string>
#include <vector>

namespace connector_config {

struct Arguments {
    /// output of --help, --version, completion or manual; if not empty, the rest is unset
    std::string information;

    Command command{};
    std::string key;               ///< of explain
    std::string prefix;            ///< of keys and show; empty for all
    std::vector<std::string> keys; ///< of get and watch
    bool forShell = false;         ///< of get: whether to write assignments for a shell
    bool followsFiles = false;     ///< of watch and serve: whether to reload changed files
    std::optional<connector::service::HttpOptions> http; ///< of serve; none for standard input
    CheckArguments check;                                ///< of check
    FleetArguments fleet; ///< of fleet, whose one source is an EtcdArgument

    std::optional<Assignment> assignment;       ///< of set
    bool withSecrets = false;                   ///< of snapshot: whether secrets are not masked
    std::vector<DiffSide> sides;                ///< of diff: two
    std::optional<PlannedChange> plannedChange; ///< of plan

    /// of the service that is asked; none for a configuration of the program's own
    std::optional<connector::service::HttpClientOptions> service;
    /// a file whose sources are taken in place of others; "-" for standard input
    std::optional<std::string> snapshot;
    /// in the order given. With a snapshot, the files that plan reload reads.
    std::vector<SourceArgument> sources;
    std::vector<std::string> secrets; ///< globs of keys whose values are masked
    bool json = false;
    bool trace = false;
};

/// Parses the command line and checks everything that does not depend on files or on a
/// configuration.
/// @throws WrongArguments
Arguments parseArguments(int argc, const char* const argv[]);

} // namespace connector_config
