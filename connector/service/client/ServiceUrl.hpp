/// Where a service is.
#pragma once

#include <optional>
#include <string>

namespace connector::service {

struct ServiceUrl {
    std::string text;      ///< as it was given
    std::string host;      ///< a name, or an address without brackets; empty for a Unix socket
    std::string port;      ///< digits
    std::string path;      ///< of a Unix socket; empty for TCP
    std::string authority; ///< for the header "Host"
    bool isTls = false;

    bool isUnix() const { return !path.empty(); }
};

/// @return nothing unless the text is "http://HOST[:PORT]", "https://HOST[:PORT]", each with or
///         without "/" at the end, or "unix:PATH"
std::optional<ServiceUrl> parseServiceUrl(const std::string& text);

} // namespace connector::service
