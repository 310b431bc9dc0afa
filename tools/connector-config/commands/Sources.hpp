/// Adds the sources that the command line names.
#pragma once

#include "arguments/Arguments.hpp"
#include "commands/NamedFile.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <functional>
#include <memory>
#include <vector>

namespace connector_config {

/// Adds a file as a read-only source.
/// @throws what the library throws
void addFile(connector::configuration::ConfigurationImpl& configuration,
             const std::shared_ptr<NamedFile>& file);

/// Adds a source of --etcd. Only the program that can use the network has such a function.
using AddEtcd =
    std::function<void(connector::configuration::ConfigurationImpl&, const EtcdArgument&)>;

/// Adds files, the environment and prefixes of etcd, and sets values, in the order of the command
/// line.
/// @param addEtcd  may be empty if there is no such source
/// @return the files
/// @throws as openFile and addEtcd, and what the library throws
NamedFiles addSources(connector::configuration::ConfigurationImpl& configuration,
                      const std::vector<SourceArgument>& sources, const AddEtcd& addEtcd);

/// Warns on standard error if the type of an assignment is probably mistyped.
void warnOfUnknownType(const Assignment& assignment);

} // namespace connector_config
