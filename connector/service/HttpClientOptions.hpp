/// What a HttpClient is told when it is made, and what it is to watch.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace connector::service {

struct HttpClientOptions {
    using Duration = std::chrono::milliseconds;

    /// "http://HOST:PORT", "https://HOST:PORT" or "unix:PATH". An IPv6 address is in brackets.
    /// Without a port, it is 80 or 443.
    std::string url;
    std::optional<std::string> tokenFile; ///< the service gets the token in it
    std::string authority;   ///< a PEM file with certificates to trust; empty for the system's
    std::string certificate; ///< a PEM file, if the service asks for certificates; empty for none
    std::string key;         ///< the private key of the certificate, a PEM file

    Duration connect = std::chrono::seconds(10); ///< to connect, beside the lookup of the name
    Duration request = std::chrono::seconds(60); ///< for a request and its whole response
    Duration silence = std::chrono::seconds(60); ///< after which a watched service counts as lost
    Duration minRetry = std::chrono::milliseconds(100); ///< before it connects again, at least
    Duration maxRetry = std::chrono::seconds(10);       ///< the same, at most; waits grow at random
};

/// What HttpClient::watch follows: the union of both.
struct WatchedOptions {
    std::vector<std::string> keys;
    std::vector<std::string> prefixes; ///< every key that begins with one of these
};

} // namespace connector::service
