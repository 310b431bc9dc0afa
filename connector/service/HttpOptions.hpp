/// The options of an HttpService.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace connector::service {

/// Where the service listens: a TCP port, or a Unix socket if there is a path.
struct ListenAddress {
    std::string host = "127.0.0.1"; ///< a name, or an address without brackets
    std::uint16_t port = 0;         ///< 0 for any free port
    std::string path;               ///< of a Unix socket; empty for TCP

    bool isUnix() const { return !path.empty(); }
};

/// Files in the PEM format. They are read when the service starts, and by HttpService::reloadTls.
struct TlsFiles {
    std::string certificate;     ///< the certificate, and those that lead from it to its authority
    std::string key;             ///< the private key of the certificate
    std::string clientAuthority; ///< if not empty, clients need a certificate of this authority
};

/// How long the service waits, and how much it accepts. A client that exceeds a limit loses its
/// connection, after a response where one is possible.
struct HttpLimits {
    using Duration = std::chrono::milliseconds;

    Duration connect = std::chrono::seconds(10); ///< for the first byte, and for a TLS handshake
    Duration head = std::chrono::seconds(10);    ///< for the head of a request
    Duration request = std::chrono::seconds(30); ///< for a whole request, from its first byte
    Duration idle = std::chrono::seconds(60);    ///< between two requests
    Duration stall = std::chrono::seconds(60);   ///< for a client to take more of a response
    Duration close = std::chrono::seconds(3);    ///< for a client to close after its last response
    Duration shutdown = std::chrono::seconds(5); ///< for everything in progress when it stops
    Duration comment = std::chrono::seconds(15); ///< between two comments of a silent event stream

    std::size_t headSize = 32 * 1024; ///< bytes of a request's head
    std::size_t connections = 10000;  ///< at the same time; of one remote address, half of them
};

struct HttpOptions {
    std::vector<ListenAddress> addresses{ListenAddress()};
    std::optional<TlsFiles> tls; ///< for the TCP addresses; Unix sockets stay plain

    /// Clients may write keys that begin with one. Messages of the service call it --writable, and
    /// the next one --property-root, as connector-config does.
    std::vector<std::string> writablePrefixes;
    std::optional<std::string> propertyRoot;       ///< clients may add property files below it
    std::uintmax_t maxFileSize = 64 * 1024 * 1024; ///< bytes of such a file
    std::optional<std::string> tokenFile;          ///< clients must send the token in it
    std::vector<std::string> allowedHosts;         ///< further names of the service, with any port
    std::vector<std::string> secretGlobs;          ///< keys whose values are masked, see Secrets

    HttpLimits limits;
};

} // namespace connector::service
