#include "service/support/ServerInside.hpp"

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

ServerInside::ServerInside(const connector::service::Limits& limits)
    : socket(anyLoopbackPort()), door(*configuration, RequestGuard("", {}),
                                      Policy({""}, {}, Secrets()), Secrets(), socket, limits) {
}

} // namespace test
