#include "commands/PromptLines.hpp"

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace connector_config {

namespace {

int makeEvent() {
    // Checked first: in place of a closed standard input, the event would get its number.
    const int event =
        ::fcntl(STDIN_FILENO, F_GETFD) < 0 ? -1 : ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (event < 0)
        throw std::system_error(errno, std::generic_category(), "Input could not be read");
    return event;
}

} // namespace

PromptLines::PromptLines()
    : failureEvent(makeEvent()), lines(STDIN_FILENO, maxLength, [this] { waitForInput(); }) {
}

PromptLines::~PromptLines() {
    ::close(failureEvent);
}

std::optional<std::string> PromptLines::next() {
    rethrowFailure();
    try {
        return lines.next();
    } catch (const std::system_error& error) {
        // A terminal that was closed reports this. It is the end of the input.
        if (error.code() == std::errc::io_error)
            return std::nullopt;
        throw;
    }
}

void PromptLines::waitForInput() const {
    pollfd waiting[] = {{STDIN_FILENO, POLLIN, 0}, {failureEvent, POLLIN, 0}};
    ::poll(waiting, 2, -1);
    rethrowFailure();
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
