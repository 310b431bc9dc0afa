/// Calls to one endpoint that wait for their answers.
#pragma once

#include <connector/etcd/detail/Endpoint.hpp>
#include <connector/etcd/detail/Settings.hpp>

#include <etcdserverpb/rpc.grpc.pb.h>
#include <grpcpp/grpcpp.h>

#include <chrono>
#include <memory>
#include <string>

namespace connector::etcd::detail {

/// Used by one thread at a time.
class Connection {
public:
    using Clock = std::chrono::steady_clock;

    /// @param newOptions  must outlive this object
    /// @throws std::runtime_error when a file of the TLS connection cannot be read
    Connection(const Options& newOptions, const Endpoint& endpoint);

    /// Authenticates if needed, and finds out whether the endpoint answers and has a leader.
    /// @throws std::runtime_error when the password file cannot be read
    grpc::Status greet(Clock::time_point deadline);

    grpc::Status range(const etcdserverpb::RangeRequest& request,
                       etcdserverpb::RangeResponse& answer, Clock::time_point deadline);
    grpc::Status write(const etcdserverpb::TxnRequest& request, etcdserverpb::TxnResponse& answer,
                       Clock::time_point deadline);

    /// @return "ENDPOINT: CAUSE"
    std::string describe(const grpc::Status& failure) const;
    std::string describe(const std::string& cause) const { return url + ": " + cause; }

private:
    grpc::Status authenticate(Clock::time_point deadline);

    const Options& options;
    const std::string url;
    const std::shared_ptr<grpc::Channel> channel;
    const std::unique_ptr<etcdserverpb::KV::Stub> kv;
    std::string token; // of the last authentication
};

} // namespace connector::etcd::detail
