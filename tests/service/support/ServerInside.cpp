#include "service/support/ServerInside.hpp"

namespace test {

using connector_config::Secrets;
using connector_config::serve::Gate;
using connector_config::serve::Policy;

namespace {

constexpr int backlog = 64;

Poco::Net::ServerSocket anyLoopbackPort() {
    return {Poco::Net::SocketAddress("127.0.0.1", 0), backlog};
}

} // namespace

ServerInside::ServerInside(const connector_config::serve::Limits& limits)
    : socket(anyLoopbackPort()),
      door(*configuration, Gate("", {}), Policy({""}, {}, Secrets()), Secrets(), socket, limits) {
}

} // namespace test
