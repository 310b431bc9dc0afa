/// Files of TLS, on both sides of a connection.
#pragma once

#include <boost/system/error_code.hpp>

#include <string>

namespace connector::service {

/// Checks a file before the TLS library opens it, which would wait for a writer of a pipe, and says
/// little about a file that is not there.
/// @throws std::runtime_error "TLS file could not be used: " + path + ": " + reason
void checkTlsFile(const std::string& path);

/// Checks what the TLS library said of a file.
/// @throws std::runtime_error  the same
void checkTlsResult(const boost::system::error_code& error, const std::string& path);

} // namespace connector::service
