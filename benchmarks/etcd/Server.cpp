#include "Server.hpp"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace bench::etcd {

using connector::configuration::OptionValue;
using connector::etcd::Change;
using connector::etcd::EtcdSource;
using connector::etcd::Options;
using connector::etcd::Startup;

namespace {

/// @param output  gets standard output; -1: nobody does
pid_t launch(const std::vector<std::string>& command, int output) {
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t id = ::fork();
    if (id < 0)
        throw std::runtime_error("cannot start " + command.front());
    if (id > 0)
        return id;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::setenv("ETCDCTL_API", "3", 1);
    const int nothing = ::open("/dev/null", O_RDWR);
    ::dup2(nothing, STDERR_FILENO);
    ::dup2(output < 0 ? nothing : output, STDOUT_FILENO);
    ::execvp(arguments.front(), arguments.data());
    ::_exit(127);
}

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

} // namespace

Program::Program(const std::vector<std::string>& command) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("there is no pipe");
    output = ends[0];
    id = launch(command, ends[1]);
    ::close(ends[1]);
}

Program::~Program() {
    ::close(output);
    ::kill(id, SIGKILL);
    ::waitpid(id, nullptr, 0);
}

std::string Program::line() {
    std::array<char, 4096> part{};
    std::size_t end = 0;
    while ((end = pending.find('\n')) == std::string::npos) {
        const ssize_t count = ::read(output, part.data(), part.size());
        if (count <= 0)
            return "";
        pending.append(part.data(), static_cast<std::size_t>(count));
    }
    std::string first = pending.substr(0, end);
    pending.erase(0, end + 1);
    return first;
}

std::size_t Program::drain() {
    std::array<char, 65536> part{};
    std::size_t all = 0;
    ssize_t count = 0;
    while ((count = ::read(output, part.data(), part.size())) > 0)
        all += static_cast<std::size_t>(count);
    return all;
}

Server::Server() : url("http://127.0.0.1:" + std::to_string(freePort())) {
    peerUrl = "http://127.0.0.1:" + std::to_string(freePort());
    folder = (std::filesystem::temp_directory_path() / "etcd-benchmark-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr)
        throw std::runtime_error("there is no folder");
    start();
    EtcdSource untilItAnswers(options("none/"));
}

Server::~Server() {
    kill();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

void Server::start() {
    id = launch({"etcd", "--data-dir=" + folder + "/data", "--listen-client-urls=" + url,
                 "--advertise-client-urls=" + url, "--listen-peer-urls=" + peerUrl,
                 "--initial-advertise-peer-urls=" + peerUrl, "--initial-cluster=default=" + peerUrl,
                 "--logger=zap"},
                -1);
}

void Server::kill() {
    if (id > 0) {
        ::kill(id, SIGKILL);
        ::waitpid(id, nullptr, 0);
    }
    id = -1;
}

Options Server::options(const std::string& prefix) const {
    Options options;
    options.endpoints = {url};
    options.prefix = prefix;
    options.startup = Startup::Wait(std::chrono::seconds(60));
    options.writeTimeout = std::chrono::seconds(30);
    return options;
}

void Server::fill(const std::string& prefix, int keys) const {
    EtcdSource source(options(prefix));
    std::vector<Change> changes;
    for (int i = 0; i < keys; ++i) {
        std::string value = std::to_string(i);
        value.resize(20, 'x');
        changes.push_back({"key." + std::to_string(i), OptionValue(value), {}});
        if (changes.size() == 128 || i + 1 == keys)
            source.apply(std::exchange(changes, {})).get();
    }
}

std::int64_t now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

std::vector<std::string> follower(const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {ETCD_FOLLOWER};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

} // namespace bench::etcd
