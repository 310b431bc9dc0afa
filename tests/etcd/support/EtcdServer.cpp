#include "EtcdServer.hpp"

#include "Eventually.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>

namespace test {

int freePort() {
    const int file = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    const bool isBound =
        ::bind(file, generic, size) == 0 && ::getsockname(file, generic, &size) == 0;
    ::close(file);
    if (!isBound)
        throw std::runtime_error("there is no free port");
    return ntohs(address.sin_port);
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
            control("get nothing");
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
    const std::string authorities = tls ? " --cacert=" + tls->authorities : "";
    return runProgram("ETCDCTL_API=3 etcdctl --dial-timeout=1s --command-timeout=2s --endpoints=" +
                      endpoint() + authorities + ' ' + words);
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
    for (std::size_t i = 0; i < members.size(); ++i) {
        // ENDPOINT, ID, VERSION, SIZE, IS LEADER, ...
        if (members[i]->control("endpoint status").find(", true, ") != std::string::npos)
            return i;
    }
    throw std::runtime_error("there is no leader");
}

} // namespace test
