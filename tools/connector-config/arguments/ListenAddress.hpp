/// Parses HOST:PORT, unix:PATH and names of hosts.
#pragma once

#include <connector/service/HttpOptions.hpp>

#include <string>

namespace connector_config {

using connector::service::ListenAddress;

/// @param text  HOST:PORT, [ADDRESS]:PORT, :PORT, PORT, or unix:PATH
/// @throws WrongArguments "Not of the form HOST:PORT or unix:PATH: " + text
ListenAddress parseListenAddress(const std::string& text);

/// @param text  a name without a port, or an address; that of IPv6 with or without brackets
/// @return the name or address, without brackets
/// @throws WrongArguments "Not the name of a host: " + text
std::string parseHostName(const std::string& text);

} // namespace connector_config
