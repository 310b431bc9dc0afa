/// Who may talk to the server at all.
///
/// A browser is the one program that lets strangers send requests from here. A page from elsewhere is
/// told by what the browser says of it: by "Origin" and "Sec-Fetch-Site", and, where the page's own
/// name was made to lead to this address, by that name in "Host".
#pragma once

#include <connector/service/access/Token.hpp>

#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/SocketAddress.h>

#include <optional>
#include <string>

namespace connector_config::serve {

class Gate {
public:
    /// @param newHost   the name or address that the user gave the server; empty for none
    /// @param newToken  what a client must show; none lets everybody in
    Gate(std::string newHost, std::optional<Token> newToken)
        : host(std::move(newHost)), token(std::move(newToken)) {}

    /// @param reached  the address of ours that the client is connected to
    /// @throws HttpFailure  403 or 401
    void check(const Poco::Net::HTTPRequest& request,
               const Poco::Net::SocketAddress& reached) const;

private:
    bool isOurs(const std::string& hostAndPort, const Poco::Net::SocketAddress& reached) const;
    bool showsToken(const Poco::Net::HTTPRequest& request) const;

    const std::string host;
    const std::optional<Token> token;
};

} // namespace connector_config::serve
