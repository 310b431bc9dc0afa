/// Decides which HTTP clients are served at all.
///
/// A web browser is the one local program that sends requests on behalf of strangers. The guard
/// recognises a foreign web page by the "Origin" and "Sec-Fetch-Site" headers that browsers add. A
/// page whose own host name was made to resolve to this address (DNS rebinding) is recognised by
/// that name in the "Host" header.
#pragma once

#include <connector/service/access/Token.hpp>

#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/SocketAddress.h>

#include <optional>
#include <string>

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
    /// @param newHost   the name or address that the user gave the server; empty for none
    /// @param newToken  the token that clients must send; none serves clients without a token
    RequestGuard(std::string newHost, std::optional<Token> newToken)
        : host(std::move(newHost)), token(std::move(newToken)) {}

    /// @param localAddress  the server's end of the client's connection
    /// @return nothing if the client may be served
    std::optional<Rejection> check(const Poco::Net::HTTPRequest& request,
                                   const Poco::Net::SocketAddress& localAddress) const;

private:
    bool isOwnAddress(const std::string& hostAndPort,
                      const Poco::Net::SocketAddress& localAddress) const;
    bool hasValidToken(const Poco::Net::HTTPRequest& request) const;

    const std::string host;
    const std::optional<Token> token;
};

} // namespace connector::service
