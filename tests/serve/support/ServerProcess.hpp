/// The program as a server over HTTP.
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
    /// @param httpArguments     behind serve --http 127.0.0.1:0
    /// @param sourceArguments   before them
    explicit ServerProcess(const std::vector<std::string>& httpArguments = {},
                           std::vector<std::string> sourceArguments = {});
    ~ServerProcess();

    std::uint16_t port() const { return listeningPort; }
    Process& process() { return running; }

    /// Sends a signal and waits for the end.
    Result stop(int signal = SIGTERM);

private:
    Process running;
    std::uint16_t listeningPort = 0;
    bool stopped = false;
};

} // namespace test
