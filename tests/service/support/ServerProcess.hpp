/// The program as an HTTP server.
#pragma once

#include "tools/support/Program.hpp"

#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace test {

class ServerProcess {
public:
    /// @param httpArguments    after serve --http ADDRESS
    /// @param sourceArguments  before it
    /// @param limits           a shell command that is run before, as "ulimit -n 64"
    explicit ServerProcess(const std::vector<std::string>& httpArguments = {},
                           std::vector<std::string> sourceArguments = {},
                           const std::string& address = "127.0.0.1:0",
                           const std::string& limits = "");
    ~ServerProcess();

    /// @return the host that the program reports; an IPv6 address in brackets
    const std::string& host() const { return listeningHost; }
    std::uint16_t port() const { return listeningPort; }
    Process& process() { return running; }

    /// Sends a signal and waits for the program to exit.
    Result stop(int signal = SIGTERM);

private:
    Process running;
    std::string listeningHost;
    std::uint16_t listeningPort = 0;
    bool stopped = false;
};

} // namespace test
