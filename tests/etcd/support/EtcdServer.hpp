/// Real servers for tests, on free ports and with data in a temporary folder.
#pragma once

#include "BackgroundProcess.hpp"

#include "support/TemporaryDirectory.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace test {

/// @return a port on which nobody listens, and that no other test uses until this process ends.
///         Call it from one thread
int freePort();

/// The files of a TLS server.
struct ServerTls {
    std::string authorities;
    std::string certificate;
    std::string key;
};

/// One member of a cluster. The constructor starts it; waitUntilReady waits.
class EtcdServer {
public:
    /// Ports and names of a cluster.
    struct Member {
        std::string name = "alone";
        int clientPort = freePort();
        int peerPort = freePort();
    };

    explicit EtcdServer(std::vector<std::string> newArguments = {},
                        std::optional<ServerTls> newTls = {});
    EtcdServer(const Member& newMember, const std::vector<Member>& cluster);

    /// Waits until it answers, at most a minute.
    void waitUntilReady() const;

    void kill() { process.reset(); }
    /// After kill.
    void restart();
    void freeze() const;
    void thaw() const;
    /// After kill: removes all data.
    void wipe() const;

    std::string endpoint() const;
    int port() const { return member.clientPort; }

    /// Runs etcdctl with these arguments, also as a user.
    std::string control(const std::string& arguments) const;

    const TemporaryDirectory folder;

private:
    void start();
    std::string run(const std::string& timeouts, const std::string& arguments) const;

    const Member member;
    const std::string cluster;
    const std::vector<std::string> arguments;
    const std::optional<ServerTls> tls;
    std::unique_ptr<BackgroundProcess> process;
};

/// Three members that are ready.
class EtcdCluster {
public:
    EtcdCluster();

    std::vector<std::string> endpoints() const;
    EtcdServer& operator[](std::size_t index) { return *members.at(index); }

    /// @return the index of the present leader
    std::size_t leader() const;

private:
    std::vector<std::unique_ptr<EtcdServer>> members;
};

} // namespace test
