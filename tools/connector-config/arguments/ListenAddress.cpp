#include "arguments/ListenAddress.hpp"

#include "values/WrongArguments.hpp"

#include <connector/service/text/Number.hpp>

#include <string_view>

namespace connector_config {

using connector::service::readNumber;

namespace {

constexpr std::string_view unixPrefix = "unix:";

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
    const bool hasBrackets = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (hasBrackets)
        host = host.substr(1, host.size() - 2);
    if (host.find_first_of("[]") != host.npos || (!hasBrackets && host.find(':') != host.npos))
        throw wrong;
    return {host.empty() ? "127.0.0.1" : host, *port, ""};
}

} // namespace connector_config
