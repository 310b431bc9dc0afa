#include "commands/PromptLines.hpp"

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace connector_config {

PromptLines::PromptLines() : failureEvent(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (failureEvent < 0)
        throw std::system_error(errno, std::generic_category(), "Standard input cannot be read");
}

PromptLines::~PromptLines() {
    ::close(failureEvent);
}

std::optional<std::string> PromptLines::next() {
    rethrowFailure();
    std::size_t lineEnd = unread.find('\n');
    while (lineEnd == unread.npos) {
        const std::size_t searched = unread.size();
        if (!readMore())
            return unread.empty() ? std::nullopt : std::make_optional(std::exchange(unread, {}));
        lineEnd = unread.find('\n', searched);
    }
    std::string line = unread.substr(0, lineEnd);
    unread.erase(0, lineEnd + 1);
    return line;
}

/// @return false at the end of the input
bool PromptLines::readMore() {
    char buffer[4096];
    while (!isAtEnd) {
        waitForInput();
        rethrowFailure();
        const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count > 0) {
            unread.append(buffer, static_cast<std::size_t>(count));
            return true;
        }
        // Any other error is the end of the input, too: a terminal that was closed reports one.
        isAtEnd = count == 0 || (errno != EINTR && errno != EAGAIN);
    }
    return false;
}

void PromptLines::waitForInput() const {
    pollfd waiting[] = {{STDIN_FILENO, POLLIN, 0}, {failureEvent, POLLIN, 0}};
    ::poll(waiting, 2, -1);
}

void PromptLines::fail(std::exception_ptr exception) {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!failure)
            failure = std::move(exception);
    }
    const std::uint64_t once = 1;
    // Fails only when the counter overflows 64 bits.
    [[maybe_unused]] const ssize_t written = ::write(failureEvent, &once, sizeof once);
}

void PromptLines::rethrowFailure() const {
    const std::lock_guard<std::mutex> lock(mutex);
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace connector_config
