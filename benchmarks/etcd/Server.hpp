/// A real server for the benchmarks.
#pragma once

#include <connector/etcd/EtcdSource.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace bench::etcd {

/// Starts a program with its standard output in a pipe.
class Program {
public:
    explicit Program(const std::vector<std::string>& command);
    ~Program(); ///< kills it
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// @return the next line of its output; empty at the end
    std::string line();

    /// Reads the rest of its output and waits for its end.
    std::size_t drain();

private:
    pid_t id = -1;
    int output = -1;
    std::string pending;
};

/// A server on a free port, with data in a temporary folder, which is empty at first.
class Server {
public:
    Server();
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    void kill();
    void start();

    const std::string& endpoint() const { return url; }
    connector::etcd::Options options(const std::string& prefix) const;

    /// Writes keys "key.N" with values of 20 bytes.
    void fill(const std::string& prefix, int keys) const;

private:
    std::string folder;
    std::string url;
    std::string peerUrl;
    pid_t id = -1;
};

/// @return nanoseconds of a clock that all processes share
std::int64_t now();

/// @return the command of a follower, see Follower.cpp
std::vector<std::string> follower(const std::vector<std::string>& arguments);

} // namespace bench::etcd
