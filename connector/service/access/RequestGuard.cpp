#include <connector/service/access/RequestGuard.hpp>

#include <connector/service/access/RequestTarget.hpp>

#include <Poco/String.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace connector::service {

using Poco::Net::HTTPRequest;
using Poco::Net::SocketAddress;

namespace {

constexpr int defaultPort = 80; // browsers leave it out of "Host"

std::vector<std::string> headerValues(const HTTPRequest& request, const std::string& name) {
    std::vector<std::string> values;
    for (const auto& header : request) {
        if (Poco::icompare(header.first, name) == 0)
            values.push_back(header.second);
    }
    return values;
}

/// @return the hosts that the client claims to contact; a target in the absolute form replaces
///         "Host"
std::vector<std::string> requestedHosts(const HTTPRequest& request) {
    if (std::optional<std::string> authority = parseRequestTarget(request.getURI()).authority)
        return {std::move(*authority)};
    return headerValues(request, "Host");
}

/// An IPv6 socket that also accepts IPv4 clients reports their addresses as IPv4-mapped ones.
SocketAddress unmapped(const SocketAddress& address) {
    const Poco::Net::IPAddress host = address.host();
    if (!host.isIPv4Mapped())
        return address;
    const auto* const end = static_cast<const char*>(host.addr()) + host.length();
    return {Poco::Net::IPAddress(end - sizeof(in_addr), sizeof(in_addr)), address.port()};
}

std::string bracketedIfIpv6(const std::string& host) {
    return host.find(':') == host.npos ? host : "[" + host + "]";
}

/// @return whether a browser sends the request for a page that another server delivered
bool isCrossOrigin(const HTTPRequest& request, const std::string& requestedHost) {
    const std::vector<std::string> origins = headerValues(request, "Origin");
    const std::vector<std::string> sites = headerValues(request, "Sec-Fetch-Site");
    return std::any_of(origins.begin(), origins.end(),
                       [&requestedHost](const std::string& origin) {
                           return Poco::icompare(origin, "http://" + requestedHost) != 0;
                       }) ||
           std::any_of(sites.begin(), sites.end(), [](const std::string& site) {
               return site != "same-origin" && site != "none";
           });
}

} // namespace

std::optional<Rejection> RequestGuard::check(const HTTPRequest& request,
                                             const SocketAddress& localAddress) const {
    const std::vector<std::string> hosts = requestedHosts(request);
    if (hosts.size() != 1 || !isOwnAddress(hosts.front(), unmapped(localAddress)))
        return Rejection{Rejection::Reason::Forbidden,
                         "Host is not the address that this server listens on"};
    if (isCrossOrigin(request, hosts.front()))
        return Rejection{Rejection::Reason::Forbidden, "Pages of other origins are not served"};
    if (token && !hasValidToken(request))
        return Rejection{Rejection::Reason::Unauthenticated, "Bearer token is missing or wrong"};
    return std::nullopt;
}

/// A foreign page cannot make the numeric address or "localhost" resolve elsewhere. Any other name
/// is accepted only if the user gave it.
bool RequestGuard::isOwnAddress(const std::string& hostAndPort,
                                const SocketAddress& localAddress) const {
    std::vector<std::string> names{localAddress.host().toString()};
    if (localAddress.host().isLoopback())
        names.emplace_back("localhost");
    if (!host.empty())
        names.push_back(host);
    const std::string port = ":" + std::to_string(localAddress.port());
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        const std::string own = bracketedIfIpv6(name);
        return Poco::icompare(hostAndPort, own + port) == 0 ||
               (localAddress.port() == defaultPort && Poco::icompare(hostAndPort, own) == 0);
    });
}

bool RequestGuard::hasValidToken(const HTTPRequest& request) const {
    constexpr char scheme[] = "Bearer ";
    constexpr std::size_t length = sizeof scheme - 1;
    const std::vector<std::string> credentials = headerValues(request, "Authorization");
    return credentials.size() == 1 && Poco::icompare(credentials.front(), 0, length, scheme) == 0 &&
           token->matches(credentials.front().substr(length));
}

} // namespace connector::service
