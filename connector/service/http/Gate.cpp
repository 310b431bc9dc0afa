#include <connector/service/http/Gate.hpp>

#include <connector/service/http/Response.hpp>
#include <connector/service/http/Target.hpp>

#include <Poco/String.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace connector_config::serve {

using Poco::Net::HTTPRequest;
using Poco::Net::SocketAddress;

namespace {

constexpr int defaultPort = 80; // which browsers leave out

HttpFailure forbidden(const std::string& text) {
    return HttpFailure(HTTPResponse::HTTP_FORBIDDEN, text);
}

std::vector<std::string> valuesOf(const HTTPRequest& request, const std::string& name) {
    std::vector<std::string> values;
    for (const auto& header : request) {
        if (Poco::icompare(header.first, name) == 0)
            values.push_back(header.second);
    }
    return values;
}

/// @return what the client says that it wants to reach; the absolute form says it in place of "Host"
std::vector<std::string> hostsOf(const HTTPRequest& request) {
    if (std::optional<std::string> authority = parseTarget(request.getURI()).authority)
        return {std::move(*authority)};
    return valuesOf(request, "Host");
}

/// A socket for IPv6 that takes clients of IPv4, too, tells their addresses as ones of IPv6.
SocketAddress unmapped(const SocketAddress& address) {
    const Poco::Net::IPAddress host = address.host();
    if (!host.isIPv4Mapped())
        return address;
    const auto* const end = static_cast<const char*>(host.addr()) + host.length();
    return {Poco::Net::IPAddress(end - sizeof(in_addr), sizeof(in_addr)), address.port()};
}

std::string inBrackets(const std::string& host) {
    return host.find(':') == host.npos ? host : "[" + host + "]";
}

} // namespace

void Gate::check(const HTTPRequest& request, const SocketAddress& reached) const {
    const std::vector<std::string> hosts = hostsOf(request);
    if (hosts.size() != 1 || !isOurs(hosts.front(), unmapped(reached)))
        throw forbidden("Host is not the address that this server listens on");
    for (const std::string& origin : valuesOf(request, "Origin")) {
        if (Poco::icompare(origin, "http://" + hosts.front()) != 0)
            throw forbidden("Pages of other origins are not served");
    }
    for (const std::string& site : valuesOf(request, "Sec-Fetch-Site")) {
        if (site != "same-origin" && site != "none")
            throw forbidden("Pages of other origins are not served");
    }
    if (token && !showsToken(request))
        throw HttpFailure(HTTPResponse::HTTP_UNAUTHORIZED, "Bearer token is missing or wrong");
}

/// The address itself cannot be made to lead elsewhere, nor can "localhost"; every other name must
/// have been given by the user.
bool Gate::isOurs(const std::string& hostAndPort, const SocketAddress& reached) const {
    std::vector<std::string> names{reached.host().toString()};
    if (reached.host().isLoopback())
        names.emplace_back("localhost");
    if (!host.empty())
        names.push_back(host);
    const std::string port = ":" + std::to_string(reached.port());
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        const std::string ours = inBrackets(name);
        return Poco::icompare(hostAndPort, ours + port) == 0 ||
               (reached.port() == defaultPort && Poco::icompare(hostAndPort, ours) == 0);
    });
}

bool Gate::showsToken(const HTTPRequest& request) const {
    constexpr char scheme[] = "Bearer ";
    constexpr std::size_t length = sizeof scheme - 1;
    const std::vector<std::string> credentials = valuesOf(request, "Authorization");
    return credentials.size() == 1 && Poco::icompare(credentials.front(), 0, length, scheme) == 0 &&
           token->matches(credentials.front().substr(length));
}

} // namespace connector_config::serve
