/// Decides which HTTP clients are served at all.
///
/// A web browser is the one local program that sends requests on behalf of strangers. The guard
/// recognises a foreign web page by the "Origin" and "Sec-Fetch-Site" headers that browsers add. A
/// page whose own host name was made to resolve to this address (DNS rebinding) is recognised by
/// that name in the "Host" header.
#pragma once

#include <connector/service/access/Token.hpp>
#include <connector/service/network/Peer.hpp>
#include <connector/service/protocol/RequestParser.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace connector::service {

/// Why a client is not served.
struct Rejection {
    enum class Reason {
        Forbidden,      ///< wrong host or origin; no credentials would help
        Unauthenticated ///< the token is missing or wrong
    };

    Reason reason;
    std::string text;
};

/// Immutable. May be used from any thread.
class RequestGuard {
public:
    /// @param newHosts         names or addresses that the user gave the server to listen on
    /// @param newAllowedHosts  further names; unlike the others, these may come with any port
    /// @param newToken         the token that clients must send; none serves clients without one
    RequestGuard(std::vector<std::string> newHosts, std::vector<std::string> newAllowedHosts,
                 std::optional<Token> newToken)
        : hosts(std::move(newHosts)), allowedHosts(std::move(newAllowedHosts)),
          token(std::move(newToken)) {}

    /// @param isPublic  whether a client is served without the token
    /// @return nothing if the client may be served
    std::optional<Rejection> check(const RequestHead& request, const Peer& peer,
                                   bool isPublic) const;

private:
    bool isOwnAddress(std::string_view hostAndPort, const Peer& peer) const;
    bool isAllowedHost(std::string_view hostAndPort) const;
    bool isOwnOrigin(std::string_view origin, std::string_view host, const Peer& peer) const;
    bool hasValidToken(const RequestHead& request) const;

    const std::vector<std::string> hosts;
    const std::vector<std::string> allowedHosts;
    const std::optional<Token> token;
};

} // namespace connector::service
