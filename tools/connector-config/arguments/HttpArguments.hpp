/// The arguments of serve --http.
#pragma once

#include "arguments/ListenAddress.hpp"

#include <optional>
#include <string>
#include <vector>

namespace connector_config {

struct HttpArguments {
    ListenAddress address;
    std::vector<std::string>
        writablePrefixes; ///< clients may set keys that begin with one of these
    std::optional<std::string>
        propertyRoot; ///< clients may add property files below this directory
    std::optional<std::string> tokenFile;
};

} // namespace connector_config
