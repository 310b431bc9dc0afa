/// Parses HOST:PORT.
#pragma once

#include <cstdint>
#include <string>

namespace connector_config {

struct ListenAddress {
    std::string host;       ///< a name, or an address without brackets; 127.0.0.1 by default
    std::uint16_t port = 0; ///< 0 for any free port
};

/// @param text  HOST:PORT, [ADDRESS]:PORT, :PORT or PORT
/// @throws WrongArguments "Not of the form HOST:PORT: " + text
ListenAddress parseListenAddress(const std::string& text);

} // namespace connector_config
