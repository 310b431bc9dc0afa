#include "serve/support/ServerProcess.hpp"

#include <stdexcept>

namespace test {

namespace {

std::vector<std::string> allArguments(const std::vector<std::string>& httpArguments,
                                      std::vector<std::string> arguments) {
    for (const char* argument : {"serve", "--http", "127.0.0.1:0"})
        arguments.emplace_back(argument);
    arguments.insert(arguments.end(), httpArguments.begin(), httpArguments.end());
    return connectorConfig(arguments);
}

std::uint16_t portIn(const std::string& line) {
    const std::string beginning = "listening on http://127.0.0.1:";
    if (line.compare(0, beginning.size(), beginning) != 0)
        throw std::runtime_error("The server does not listen: " + line);
    return static_cast<std::uint16_t>(std::stoi(line.substr(beginning.size())));
}

} // namespace

ServerProcess::ServerProcess(const std::vector<std::string>& httpArguments,
                             std::vector<std::string> sourceArguments)
    : running(allArguments(httpArguments, std::move(sourceArguments))),
      listeningPort(portIn(running.readLine())) {
}

ServerProcess::~ServerProcess() {
    if (!stopped)
        running.signal(SIGTERM);
}

Result ServerProcess::stop(int signal) {
    stopped = true;
    running.signal(signal);
    return running.finish();
}

} // namespace test
