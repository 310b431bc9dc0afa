/// A server of its own for each test of the program.
#pragma once

#include "etcd/support/Client.hpp"
#include "etcd/support/EtcdServer.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace test {

using Arguments = std::vector<std::string>;

class Fleet : public testing::Test {
protected:
    /// @return the argument of --etcd
    std::string etcd(const std::string& more = "") const {
        return "endpoint=" + server.endpoint() + ",prefix=fleet/" + more;
    }

    /// Runs the program with the prefix as its source.
    Result run(Arguments arguments) const {
        arguments.insert(arguments.begin(), {"--etcd", etcd()});
        return runConnectorConfig(std::move(arguments));
    }

    /// Runs a command of fleet.
    Result fleet(Arguments arguments) const {
        arguments.insert(arguments.begin(), "fleet");
        return run(std::move(arguments));
    }

    /// @return what the engine has, by the keys without the prefix
    std::map<std::string, std::string> texts() { return client.list("fleet/").values; }

    /// Connects anew: the server may have been restarted.
    std::int64_t put(const std::string& key, const std::string& text) const {
        return Client(server.endpoint()).put("fleet/" + key, text);
    }

    EtcdServer server;
    Client client{server.endpoint()};
};

/// @return an endpoint at which nobody answers
inline std::string nobody() {
    return "http://127.0.0.1:" + std::to_string(freePort());
}

} // namespace test
