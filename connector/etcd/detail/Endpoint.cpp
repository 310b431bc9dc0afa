#include <connector/etcd/detail/Endpoint.hpp>

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace connector::etcd::detail {

namespace {

bool isAddress(int family, const std::string& host) {
    std::array<unsigned char, sizeof(in6_addr)> ignored{};
    return ::inet_pton(family, host.c_str(), ignored.data()) == 1;
}

bool isPort(const std::string& text) {
    const bool isNumber = !text.empty() && text.size() <= 5 &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber && std::stoi(text) >= 1 && std::stoi(text) <= 65535;
}

bool isHostName(const std::string& host) {
    return !host.empty() && host.size() <= 253 &&
           std::all_of(host.begin(), host.end(), [](unsigned char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                      c == '-' || c == '.' || c == '_';
           });
}

/// @return the target; empty if the host cannot be read. An address needs no resolver.
std::string targetOf(const std::string& host, const std::string& port) {
    const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (isBracketed)
        return isAddress(AF_INET6, host.substr(1, host.size() - 2)) ? "ipv6:" + host + ':' + port
                                                                    : "";
    if (isAddress(AF_INET, host))
        return "ipv4:" + host + ':' + port;
    return isHostName(host) ? "dns:///" + host + ':' + port : "";
}

} // namespace

Endpoint parseEndpoint(const std::string& url) {
    Endpoint endpoint{url, "", url.rfind("https://", 0) == 0};
    const std::string scheme = endpoint.isSecure ? "https://" : "http://";
    std::string rest = url.rfind(scheme, 0) == 0 ? url.substr(scheme.size()) : "";
    if (!rest.empty() && rest.back() == '/')
        rest.pop_back();
    const std::size_t colon = rest.rfind(':');
    if (colon != std::string::npos && isPort(rest.substr(colon + 1)))
        endpoint.target = targetOf(rest.substr(0, colon), rest.substr(colon + 1));
    if (endpoint.target.empty())
        throw std::invalid_argument("Not an endpoint: " + url);
    return endpoint;
}

} // namespace connector::etcd::detail
