#include <connector/service/messages/LineReader.hpp>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <poll.h>
#include <unistd.h>

namespace connector::service {

namespace {

bool isTemporary(int error) {
    return error == EINTR || error == EAGAIN || error == EWOULDBLOCK;
}

/// For a descriptor that does not block.
void waitForInput(int descriptor) {
    pollfd waiting{descriptor, POLLIN, 0};
    ::poll(&waiting, 1, -1);
}

} // namespace

std::optional<std::string> LineReader::next() {
    std::string line;
    bool hasInput = false;
    while (begin < end || fillBuffer()) {
        hasInput = true;
        const char* const first = buffer + begin;
        const char* const lineEnd = std::find(first, static_cast<const char*>(buffer + end), '\n');
        const auto length = static_cast<std::size_t>(lineEnd - first);
        line.append(first, std::min(length, maxLength + 1 - line.size()));
        begin += length;
        if (begin < end) {
            ++begin; // the line break
            return line;
        }
    }
    return hasInput ? std::optional<std::string>(std::move(line)) : std::nullopt;
}

/// @return false at the end of the input
bool LineReader::fillBuffer() {
    ssize_t count = -1;
    while (count < 0) {
        if (wait)
            wait();
        count = ::read(descriptor, buffer, sizeof buffer);
        if (count < 0 && !isTemporary(errno))
            throw std::system_error(errno, std::generic_category(), "Input could not be read");
        if (count < 0 && !wait)
            waitForInput(descriptor);
    }
    begin = 0;
    end = static_cast<std::size_t>(count);
    return count > 0;
}

} // namespace connector::service
