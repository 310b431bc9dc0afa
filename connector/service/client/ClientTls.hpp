/// Which services a client trusts, and the certificate by which services know it.
#pragma once

#include <connector/service/HttpClientOptions.hpp>

#include <boost/asio/ssl/context.hpp>

#include <memory>

namespace connector::service {

/// @throws std::runtime_error "TLS file could not be used: " + path + ": " + reason
std::shared_ptr<boost::asio::ssl::context> makeClientContext(const HttpClientOptions& options);

} // namespace connector::service
