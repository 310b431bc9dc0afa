/// The service for other programs, over HTTP.
#pragma once

#include <connector/service/text/Secrets.hpp>
#include "arguments/ListenAddress.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <optional>
#include <string>
#include <vector>

namespace connector_config::serve {

struct HttpArguments {
    ListenAddress address;
    std::vector<std::string> writable;       ///< prefixes of the keys that may be set
    std::optional<std::string> propertyRoot; ///< the directory below which files may be added
    std::optional<std::string> tokenFile;
};

/// Says where it listens, on standard output, and serves until SIGINT or SIGTERM. To be called before
/// there is any other thread.
/// @throws std::runtime_error for a token file, a directory or an address that is no good
/// @throws OutputFailure
void serveHttp(connector::configuration::ConfigurationImpl& configuration,
               const HttpArguments& arguments, const Secrets& secrets);

} // namespace connector_config::serve
