#include <connector/service/messages/LineReader.hpp>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace connector::service {

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
    ssize_t count;
    do {
        count = ::read(descriptor, buffer, sizeof buffer);
    } while (count < 0 && errno == EINTR);
    if (count < 0)
        throw std::system_error(errno, std::generic_category(), "Input could not be read");
    begin = 0;
    end = static_cast<std::size_t>(count);
    return count > 0;
}

} // namespace connector::service
