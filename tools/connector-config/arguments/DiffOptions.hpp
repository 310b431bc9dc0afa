/// The grammar of diff.
#pragma once

#include "arguments/FileArgument.hpp"
#include "arguments/ServiceOptions.hpp"

#include <connector/service/HttpClientOptions.hpp>

#include <string>
#include <variant>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace connector_config {

/// The path of a snapshot or of a file of options, "-" for a snapshot on standard input.
using SnapshotOrFile = std::string;

/// What diff compares.
using DiffSide = std::variant<SnapshotOrFile, FileArgument, connector::service::HttpClientOptions>;

/// @return the services among the sides, in their order
std::vector<connector::service::HttpClientOptions> servicesOf(const std::vector<DiffSide>& sides);

/// Declares the options of diff to CLI11, which fills this object.
class DiffOptions {
public:
    /// @param newCommand  the command diff, which must outlive this object
    void declare(CLI::App& newCommand);

    /// @param services  makes the options of each URL. Its own, in front of the command, is the
    ///                  first side.
    /// @return the two sides, in the order of the arguments
    /// @throws WrongArguments
    std::vector<DiffSide> collect(const ServiceOptions& services) const;

private:
    const CLI::App* command = nullptr;
    const CLI::Option* url = nullptr;
    std::vector<std::string> files;
    std::vector<std::string> urls;
};

} // namespace connector_config
