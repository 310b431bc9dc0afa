/// Connections to the engine.
#pragma once

#include <connector/etcd/Options.hpp>
#include <connector/etcd/detail/Endpoint.hpp>

#include <grpcpp/grpcpp.h>

#include <memory>
#include <string>

namespace connector::etcd::detail {

/// Every session has a channel of its own: it connects at the first call, and never again once it
/// is broken. So the pauses between attempts are those of Backoff, not those of gRPC.
/// @throws std::runtime_error when a file of the TLS connection cannot be read
std::shared_ptr<grpc::Channel> makeChannel(const Endpoint& endpoint, const TlsFiles& files);

/// @return the cause of a failure in one line
std::string causeOf(const grpc::Status& status);

/// @return whether the engine refused the call because the token is missing or not valid any more
bool wantsToken(const grpc::Status& status);

/// @return whether the engine, or our side before it sent anything, has refused the call for sure
bool isRefusal(const grpc::Status& status);

} // namespace connector::etcd::detail
