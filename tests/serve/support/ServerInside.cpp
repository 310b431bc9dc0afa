#include "serve/support/ServerInside.hpp"

namespace test {

namespace {

constexpr int backlog = 64;

Poco::Net::ServerSocket anyLoopbackPort() {
    return {Poco::Net::SocketAddress("127.0.0.1", 0), backlog};
}

} // namespace

ServerInside::ServerInside(const Limits& limits)
    : events(secrets, limits.commentInterval, limits.mostStreams),
      shared{gate, resources, *configuration, events, limits.patience, {}},
      socket(anyLoopbackPort()), server(socket, shared) {
}

} // namespace test
