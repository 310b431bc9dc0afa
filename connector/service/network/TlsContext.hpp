/// The TLS settings of the server.
#pragma once

#include <connector/service/HttpOptions.hpp>

#include <boost/asio/ssl/context.hpp>

#include <memory>

namespace connector::service {

/// TLS 1.2 and later.
/// @throws std::runtime_error "TLS file could not be used: " + path + ": " + reason, or
///         "TLS key does not fit the certificate: " + path
std::shared_ptr<boost::asio::ssl::context> makeServerContext(const TlsFiles& files);

} // namespace connector::service
