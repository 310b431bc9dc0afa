#include "display/Output.hpp"

#include <connector/service/text/Escaping.hpp>

#include <cerrno>
#include <iostream>
#include <mutex>

#include <poll.h>
#include <unistd.h>

namespace connector_config {

using connector::service::escaped;

namespace {

/// For a pipe that does not block. A failure ends the waiting, and the next write reports it.
void waitForReader() {
    pollfd waiting{STDOUT_FILENO, POLLOUT, 0};
    ::poll(&waiting, 1, -1);
}

} // namespace

OutputError::OutputError(int error)
    : system_error(error, std::generic_category(), "Standard output could not be written") {
}

bool OutputError::isBrokenPipe() const {
    return code() == std::errc::broken_pipe;
}

void writeOutput(const std::string& text) {
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    std::string_view rest = text;
    while (!rest.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, rest.data(), rest.size());
        if (written >= 0)
            rest.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EAGAIN || errno == EWOULDBLOCK)
            waitForReader();
        else if (errno != EINTR)
            throw OutputError(errno);
    }
}

void printError(const std::string& message) {
    std::cerr << "connector-config: " + escaped(message) + '\n' << std::flush;
}

void printNotice(const std::string& message) {
    std::cerr << escaped(message) + '\n' << std::flush;
}

} // namespace connector_config
