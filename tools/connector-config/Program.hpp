/// What the program does with its arguments.
///
/// There are three programs with the same sources and commands: connector-config;
/// connector-config-network, which can also ask a service, or be one; and connector-config-etcd,
/// which can also use etcd. Loading the libraries for that takes longer than most commands run, so
/// connector-config starts another program only when it must.
#pragma once

#include "ExitStatus.hpp"
#include "arguments/Arguments.hpp"
#include "commands/NamedFile.hpp"
#include "commands/Sources.hpp"
#include "comparing/DiffCommand.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <functional>
#include <memory>

namespace connector_config {

class OptionReader;

/// Runs a command that uses the network.
/// @return the exit status of the program
using RunOnNetwork = std::function<ExitStatus(const Arguments&)>;

/// Serves a configuration until the program ends.
/// @param files  of its sources
using Serve =
    std::function<void(const std::shared_ptr<connector::configuration::ConfigurationImpl>&,
                       const Arguments&, const NamedFiles& files)>;

/// @return whether the command reads or writes options in etcd
bool needsEtcd(const Arguments& arguments);

/// Runs the program. Failures are printed.
/// @param argv  as main gets it
/// @return the exit status
int runProgram(int argc, const char* const argv[], const RunOnNetwork& runOnNetwork);

/// Runs a command on the sources of the arguments.
/// @param serve  for serve
/// @param addEtcd  see addSources
ExitStatus runOnSources(const Arguments& arguments, const Serve& serve, const AddEtcd& addEtcd);

/// Serves on standard input and output.
void serveWithoutNetwork(
    const std::shared_ptr<connector::configuration::ConfigurationImpl>& configuration,
    const Arguments& arguments, const NamedFiles& files);

/// Runs diff.
/// @param readService  empty if no side is a service
ExitStatus runDiff(const Arguments& arguments, const ReadService& readService);

/// Runs get, keys, show or explain.
ExitStatus runReader(OptionReader& reader, const Arguments& arguments);

} // namespace connector_config
