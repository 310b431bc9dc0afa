#include "EtcdServer.hpp"

#include "Eventually.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <random>
#include <stdexcept>

namespace test {

namespace {

/// Below the ports that the system gives to connections, so none of these takes the port of a
/// server that is down.
constexpr int firstPort = 20'000;
constexpr int ports = 12'000;

bool isFree(int port) {
    const int file = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const bool isBound =
        ::bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(file);
    return isBound;
}

/// Takes a name that the system gives to one process at a time, until its end.
/// @return whether no other test has this port
bool reserve(int port) {
    const std::string name = "etcd-test-port-" + std::to_string(port);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path + 1, sizeof address.sun_path - 1); // after a NUL: not in a folder
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const int file = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(file, reinterpret_cast<const sockaddr*>(&address), size) == 0)
        return true; // it stays open
    ::close(file);
    return false;
}

} // namespace

int freePort() {
    static std::mt19937 random{std::random_device()()};
    for (int attempt = 0; attempt < 1'000; ++attempt) {
        const int port = firstPort + static_cast<int>(random() % ports);
        if (reserve(port) && isFree(port))
            return port;
    }
    throw std::runtime_error("there is no free port");
}

namespace {

std::string peerUrl(const EtcdServer::Member& member) {
    return "http://127.0.0.1:" + std::to_string(member.peerPort);
}

std::string describe(const std::vector<EtcdServer::Member>& members) {
    std::string text;
    for (const EtcdServer::Member& member : members)
        text += (text.empty() ? "" : ",") + member.name + '=' + peerUrl(member);
    return text;
}

} // namespace

EtcdServer::EtcdServer(std::vector<std::string> newArguments, std::optional<ServerTls> newTls)
    : cluster(describe({member})), arguments(std::move(newArguments)), tls(std::move(newTls)) {
    start();
    waitUntilReady();
}

EtcdServer::EtcdServer(const Member& newMember, const std::vector<Member>& newCluster)
    : member(newMember), cluster(describe(newCluster)) {
    start();
}

void EtcdServer::start() {
    std::vector<std::string> command = {"etcd",
                                        "--name=" + member.name,
                                        "--data-dir=" + (folder.path / "data").string(),
                                        "--listen-client-urls=" + endpoint(),
                                        "--advertise-client-urls=" + endpoint(),
                                        "--listen-peer-urls=" + peerUrl(member),
                                        "--initial-advertise-peer-urls=" + peerUrl(member),
                                        "--initial-cluster=" + cluster,
                                        "--logger=zap"};
    if (tls) {
        command.push_back("--cert-file=" + tls->certificate);
        command.push_back("--key-file=" + tls->key);
    }
    if (cluster.find(',') == std::string::npos) { // alone it is elected soon
        command.push_back("--heartbeat-interval=10");
        command.push_back("--election-timeout=100");
    }
    command.insert(command.end(), arguments.begin(), arguments.end());
    process = std::make_unique<BackgroundProcess>(command, folder.path / "log");
}

void EtcdServer::waitUntilReady() const {
    const bool isReady = eventually([this] {
        try {
            run("--dial-timeout=1s --command-timeout=2s", "get nothing");
        } catch (const std::runtime_error& error) {
            // Whoever is refused was answered.
            return std::string(error.what()).find("user name is empty") != std::string::npos;
        }
        return true;
    });
    if (!isReady)
        throw std::runtime_error("etcd does not start");
}

void EtcdServer::restart() {
    start();
}

void EtcdServer::freeze() const {
    process->signal(SIGSTOP);
}

void EtcdServer::thaw() const {
    process->signal(SIGCONT);
}

void EtcdServer::wipe() const {
    std::filesystem::remove_all(folder.path / "data");
}

std::string EtcdServer::endpoint() const {
    return (tls ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(member.clientPort);
}

std::string EtcdServer::control(const std::string& words) const {
    return run("--dial-timeout=30s --command-timeout=30s", words);
}

std::string EtcdServer::run(const std::string& timeouts, const std::string& words) const {
    const std::string authorities = tls ? " --cacert=" + tls->authorities : "";
    return runProgram("ETCDCTL_API=3 etcdctl " + timeouts + " --endpoints=" + endpoint() +
                      authorities + ' ' + words);
}

EtcdCluster::EtcdCluster() {
    std::vector<EtcdServer::Member> all(3);
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i].name = "member" + std::to_string(i);
    for (const EtcdServer::Member& one : all)
        members.push_back(std::make_unique<EtcdServer>(one, all));
    for (const auto& one : members)
        one->waitUntilReady();
}

std::vector<std::string> EtcdCluster::endpoints() const {
    std::vector<std::string> urls;
    for (const auto& one : members)
        urls.push_back(one->endpoint());
    return urls;
}

std::size_t EtcdCluster::leader() const {
    std::size_t index = 0;
    const auto isLeader = [](const auto& one) {
        // ENDPOINT, ID, VERSION, SIZE, IS LEADER, ...
        return one->control("endpoint status").find(", true, ") != std::string::npos;
    };
    const bool isFound = eventually([&] { // there is none during an election
        const auto found = std::find_if(members.begin(), members.end(), isLeader);
        index = static_cast<std::size_t>(found - members.begin());
        return found != members.end();
    });
    if (!isFound)
        throw std::runtime_error("there is no leader");
    return index;
}

} // namespace test
