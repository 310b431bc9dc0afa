#include <connector/service/access/RequestGuard.hpp>

#include <connector/service/protocol/RequestTarget.hpp>

#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <utility>

namespace connector::service {

namespace http = boost::beast::http;

namespace {

constexpr char forbiddenHost[] = "Host is not the address that this server listens on";
constexpr char forbiddenOrigin[] = "Pages of other origins are not served";

std::string_view viewOf(boost::beast::string_view text) {
    return {text.data(), text.size()};
}

bool equals(std::string_view left, std::string_view right) {
    return boost::beast::iequals({left.data(), left.size()}, {right.data(), right.size()});
}

std::vector<std::string_view> valuesOf(const RequestHead& request, boost::beast::string_view name) {
    std::vector<std::string_view> values;
    const auto [first, last] = request.equal_range(name);
    std::transform(first, last, std::back_inserter(values),
                   [](const auto& field) { return viewOf(field.value()); });
    return values;
}

std::string_view schemeOf(const Peer& peer) {
    return peer.isTls ? "https" : "http";
}

/// @return the hosts that the client claims to contact; a target in the absolute form replaces
///         "Host"
std::vector<std::string_view> requestedHosts(const RequestHead& request, const Peer& peer) {
    const RequestTarget target = parseRequestTarget(viewOf(request.target()));
    if (!target.authority)
        return valuesOf(request, "Host");
    if (target.scheme != schemeOf(peer))
        return {};
    return {*target.authority};
}

std::string bracketedIfIpv6(const std::string& host) {
    return host.find(':') == host.npos ? host : "[" + host + "]";
}

/// @return the port that browsers leave out of "Host"
std::uint16_t defaultPort(const Peer& peer) {
    return peer.isTls ? 443 : 80;
}

/// @return the host without ":PORT" at its end
std::string_view withoutPort(std::string_view hostAndPort) {
    const std::size_t colon = hostAndPort.rfind(':');
    const bool hasPort = colon != hostAndPort.npos && colon + 1 < hostAndPort.size() &&
                         hostAndPort.find_first_not_of("0123456789", colon + 1) == hostAndPort.npos;
    return hasPort ? hostAndPort.substr(0, colon) : hostAndPort;
}

bool isForeignSite(std::string_view site) {
    return site != "same-origin" && site != "none";
}

} // namespace

std::optional<Rejection> RequestGuard::check(const RequestHead& request, const Peer& peer,
                                             bool isPublic) const {
    const auto requested = requestedHosts(request, peer);
    if (requested.size() != 1 ||
        !(isOwnAddress(requested.front(), peer) || isAllowedHost(requested.front())))
        return Rejection{Rejection::Reason::Forbidden, forbiddenHost};
    const auto origins = valuesOf(request, "Origin");
    const auto sites = valuesOf(request, "Sec-Fetch-Site");
    const bool isOwn = std::all_of(origins.begin(), origins.end(), [&](std::string_view origin) {
        return isOwnOrigin(origin, requested.front(), peer);
    });
    if (!isOwn || std::any_of(sites.begin(), sites.end(), isForeignSite))
        return Rejection{Rejection::Reason::Forbidden, forbiddenOrigin};
    if (token && !isPublic && !hasValidToken(request))
        return Rejection{Rejection::Reason::Unauthenticated, "Bearer token is missing or wrong"};
    return std::nullopt;
}

/// A foreign page cannot make the numeric address or "localhost" resolve elsewhere. Any other name
/// is accepted only if the user gave it.
bool RequestGuard::isOwnAddress(std::string_view hostAndPort, const Peer& peer) const {
    if (peer.isUnix)
        return equals(hostAndPort, "localhost");
    const auto local = unmapped(peer.local);
    std::vector<std::string> names{local.to_string()};
    if (local.is_loopback())
        names.emplace_back("localhost");
    names.insert(names.end(), hosts.begin(), hosts.end());
    const std::string port = ":" + std::to_string(peer.localPort);
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        const std::string own = bracketedIfIpv6(name);
        return equals(hostAndPort, own + port) ||
               (peer.localPort == defaultPort(peer) && equals(hostAndPort, own));
    });
}

bool RequestGuard::isAllowedHost(std::string_view hostAndPort) const {
    const std::string_view host = withoutPort(hostAndPort);
    return std::any_of(allowedHosts.begin(), allowedHosts.end(), [&](const std::string& name) {
        return equals(host, bracketedIfIpv6(name));
    });
}

/// Behind a proxy, the name of the service can be reached by either scheme.
bool RequestGuard::isOwnOrigin(std::string_view origin, std::string_view host,
                               const Peer& peer) const {
    const RequestTarget parts = parseRequestTarget(origin);
    if (!parts.authority || !parts.path.empty())
        return false;
    if (isAllowedHost(*parts.authority))
        return true;
    return parts.scheme == schemeOf(peer) && equals(*parts.authority, host);
}

bool RequestGuard::hasValidToken(const RequestHead& request) const {
    constexpr std::string_view scheme = "Bearer ";
    const auto credentials = valuesOf(request, "Authorization");
    return credentials.size() == 1 &&
           equals(credentials.front().substr(0, scheme.size()), scheme) &&
           token->matches(std::string(credentials.front().substr(scheme.size())));
}

} // namespace connector::service
