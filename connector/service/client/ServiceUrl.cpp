#include <connector/service/client/ServiceUrl.hpp>

#include <connector/service/text/Number.hpp>

#include <cstdint>
#include <string_view>

#include <sys/un.h>

namespace connector::service {

namespace {

constexpr std::string_view unixScheme = "unix:";

/// @return whether the text begins with the prefix, which is then removed
bool removePrefix(std::string_view& text, std::string_view prefix) {
    if (text.substr(0, prefix.size()) != prefix)
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

std::optional<ServiceUrl> parseUnix(const std::string& text, std::string_view path) {
    if (path.empty() || path.size() >= sizeof(sockaddr_un::sun_path) ||
        path.find('\0') != path.npos)
        return std::nullopt;
    ServiceUrl url;
    url.text = text;
    url.path = path;
    url.authority = "localhost";
    return url;
}

bool isPort(std::string_view text) {
    const auto port = readNumber<std::uint16_t>(text);
    return port && *port != 0;
}

/// @return what is before a port, without brackets; empty if that is no host
std::string_view hostIn(std::string_view text) {
    constexpr std::string_view addressBytes = "0123456789abcdefABCDEF:.%";
    if (text.size() >= 2 && text.front() == '[' && text.back() == ']') {
        const std::string_view address = text.substr(1, text.size() - 2);
        return address.find_first_not_of(addressBytes) == address.npos ? address : "";
    }
    for (const char byte : text) {
        if (byte <= ' ' || byte > '~' || std::string_view("/?#@:[]\\\"").find(byte) != text.npos)
            return {};
    }
    return text;
}

/// @return the place of the colon before the port
std::size_t findPort(std::string_view authority) {
    const std::size_t colon = authority.rfind(':');
    const std::size_t bracket = authority.rfind(']');
    const bool isInAddress = bracket != authority.npos && colon < bracket;
    return isInAddress ? authority.npos : colon;
}

} // namespace

std::optional<ServiceUrl> parseServiceUrl(const std::string& text) {
    std::string_view rest = text;
    if (removePrefix(rest, unixScheme))
        return parseUnix(text, rest);
    ServiceUrl url;
    url.text = text;
    url.isTls = removePrefix(rest, "https://");
    if (!url.isTls && !removePrefix(rest, "http://"))
        return std::nullopt;
    if (!rest.empty() && rest.back() == '/')
        rest.remove_suffix(1);
    const std::size_t colon = findPort(rest);
    url.port = url.isTls ? "443" : "80";
    if (colon != rest.npos) {
        url.port = rest.substr(colon + 1);
        if (!isPort(url.port))
            return std::nullopt;
    }
    url.host = hostIn(rest.substr(0, colon));
    url.authority = rest;
    if (url.host.empty())
        return std::nullopt;
    return url;
}

} // namespace connector::service
