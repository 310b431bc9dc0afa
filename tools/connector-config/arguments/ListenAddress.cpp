#include "arguments/ListenAddress.hpp"

#include "values/WrongArguments.hpp"

#include <connector/service/text/Number.hpp>

#include <algorithm>
#include <string_view>

#include <arpa/inet.h>

namespace connector_config {

using connector::service::readNumber;

namespace {

constexpr std::string_view unixPrefix = "unix:";

bool hasBrackets(const std::string& host) {
    return host.size() > 2 && host.front() == '[' && host.back() == ']';
}

bool isIpv6(const std::string& text) {
    in6_addr ignored;
    return ::inet_pton(AF_INET6, text.c_str(), &ignored) == 1;
}

} // namespace

ListenAddress parseListenAddress(const std::string& text) {
    const WrongArguments wrong("Not of the form HOST:PORT or unix:PATH: " + text);
    if (text.compare(0, unixPrefix.size(), unixPrefix) == 0) {
        if (text.size() == unixPrefix.size())
            throw wrong;
        return {"", 0, text.substr(unixPrefix.size())};
    }
    const std::size_t colon = text.rfind(':');
    const std::size_t portStart = colon == text.npos ? 0 : colon + 1;
    const auto port = readNumber<std::uint16_t>(text.substr(portStart));
    if (!port)
        throw wrong;
    std::string host = text.substr(0, colon == text.npos ? 0 : colon);
    const bool isBracketed = hasBrackets(host);
    if (isBracketed)
        host = host.substr(1, host.size() - 2);
    if (host.find_first_of("[]") != host.npos || (!isBracketed && host.find(':') != host.npos))
        throw wrong;
    return {host.empty() ? "127.0.0.1" : host, *port, ""};
}

std::string parseHostName(const std::string& text) {
    const std::string name = hasBrackets(text) ? text.substr(1, text.size() - 2) : text;
    const bool isName = !text.empty() && std::all_of(text.begin(), text.end(), [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
               (byte >= '0' && byte <= '9') || byte == '.' || byte == '-' || byte == '_';
    });
    if (!isName && !isIpv6(name))
        throw WrongArguments("Not the name of a host: " + text);
    return name;
}

} // namespace connector_config
