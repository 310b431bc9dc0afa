#include "service/support/ServerProcess.hpp"

#include <stdexcept>

namespace test {

namespace {

std::vector<std::string> allArguments(const std::vector<std::string>& httpArguments,
                                      std::vector<std::string> arguments,
                                      const std::string& address, const std::string& limits) {
    arguments.insert(arguments.end(), {"serve", "--http", address});
    arguments.insert(arguments.end(), httpArguments.begin(), httpArguments.end());
    std::vector<std::string> command = connectorConfig(arguments);
    if (!limits.empty())
        command.insert(command.begin(), {"/bin/sh", "-c", limits + " && exec \"$0\" \"$@\""});
    return command;
}

} // namespace

ServerProcess::ServerProcess(const std::vector<std::string>& httpArguments,
                             std::vector<std::string> sourceArguments, const std::string& address,
                             const std::string& limits)
    : running(allArguments(httpArguments, std::move(sourceArguments), address, limits)) {
    const std::string line = running.readLine();
    const std::string beginning = "listening on http://";
    const std::size_t colon = line.rfind(':');
    if (line.compare(0, beginning.size(), beginning) != 0 || colon < beginning.size())
        throw std::runtime_error("The server does not listen: " + line);
    listeningHost = line.substr(beginning.size(), colon - beginning.size());
    listeningPort = static_cast<std::uint16_t>(std::stoi(line.substr(colon + 1)));
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
