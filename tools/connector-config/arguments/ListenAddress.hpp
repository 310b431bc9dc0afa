/// Parses HOST:PORT and unix:PATH.
#pragma once

#include <connector/service/HttpOptions.hpp>

#include <string>

namespace connector_config {

using connector::service::ListenAddress;

/// @param text  HOST:PORT, [ADDRESS]:PORT, :PORT, PORT, or unix:PATH
/// @throws WrongArguments "Not of the form HOST:PORT or unix:PATH: " + text
ListenAddress parseListenAddress(const std::string& text);

} // namespace connector_config
