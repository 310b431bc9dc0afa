#include <connector/service/client/EventStreamReader.hpp>

#include <stdexcept>
#include <utility>

namespace connector::service {

namespace {

constexpr std::size_t maxEvent = 256 * 1024 * 1024;
constexpr std::size_t maxId = 1024; // a longer one is no use: servers refuse long headers

} // namespace

void EventStreamReader::append(std::string_view bytes) {
    if (unread.size() + event.data.size() + bytes.size() > maxEvent)
        throw std::length_error("An event is longer than 256 MiB");
    unread += bytes;
}

std::optional<ServerEvent> EventStreamReader::next() {
    std::string line;
    while (readLine(line)) {
        if (!line.empty()) {
            readField(line);
            continue;
        }
        ServerEvent complete = event;
        event.type.clear();
        event.data.clear();
        if (std::exchange(hasData, false))
            return complete;
    }
    return std::nullopt;
}

/// A line ends at "\n", "\r\n" or "\r". A "\r" at the end waits for what follows it.
bool EventStreamReader::readLine(std::string& line) {
    const std::size_t end = unread.find_first_of("\r\n", searched);
    const bool isOpen = end == unread.npos || (unread[end] == '\r' && end + 1 == unread.size());
    if (isOpen) {
        searched = end == unread.npos ? unread.size() : end;
        return false;
    }
    line.assign(unread, 0, end);
    const std::size_t length = unread.compare(end, 2, "\r\n") == 0 ? 2 : 1;
    unread.erase(0, end + length);
    searched = 0;
    return true;
}

void EventStreamReader::readField(const std::string& line) {
    const std::size_t colon = line.find(':');
    const std::string name = line.substr(0, colon);
    std::string value = colon == line.npos ? "" : line.substr(colon + 1);
    if (!value.empty() && value.front() == ' ')
        value.erase(0, 1);
    if (name == "event") {
        event.type = value;
    } else if (name == "data") {
        event.data += (hasData ? "\n" : "") + value;
        hasData = true;
    } else if (name == "id" && value.size() <= maxId && value.find('\0') == value.npos) {
        event.id = value;
    }
}

} // namespace connector::service
