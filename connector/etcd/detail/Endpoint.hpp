/// The address of one member of the cluster.
#pragma once

#include <string>

namespace connector::etcd::detail {

struct Endpoint {
    std::string url;    ///< as it was given
    std::string target; ///< for gRPC
    bool isSecure = false;
};

/// @param url  "http://HOST:PORT" or "https://HOST:PORT"
/// @throws std::invalid_argument "Not an endpoint: URL"
Endpoint parseEndpoint(const std::string& url);

} // namespace connector::etcd::detail
