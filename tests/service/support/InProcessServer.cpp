#include "service/support/InProcessServer.hpp"

namespace test {

using connector::service::Policy;
using connector::service::RequestGuard;
using connector::service::Secrets;

namespace {

constexpr int backlog = 64;

Poco::Net::ServerSocket anyLoopbackPort() {
    return {Poco::Net::SocketAddress("127.0.0.1", 0), backlog};
}

} // namespace

InProcessServer::InProcessServer(const connector::service::HttpLimits& limits)
    : socket(anyLoopbackPort()), service(*configuration, RequestGuard("", {}),
                                         Policy({""}, {}, Secrets()), Secrets(), socket, limits) {
}

} // namespace test
