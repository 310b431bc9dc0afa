/// Reads server-sent events.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace connector::service {

struct ServerEvent {
    std::string type; ///< empty for an event without a name
    std::string data;
    std::string id; ///< of the last event that had one, up to this one
};

/// Reads the bytes of one stream as the HTML standard defines them. "retry" is ignored.
class EventStreamReader {
public:
    /// @throws std::length_error "An event is longer than 256 MiB"
    void append(std::string_view bytes);

    /// @return the next complete event with data; nothing before more bytes are appended
    std::optional<ServerEvent> next();

private:
    bool readLine(std::string& line);
    void readField(const std::string& line);

    std::string unread;
    std::size_t searched = 0; // bytes of `unread` without a line break
    ServerEvent event;        // as far as it has been read
    bool hasData = false;
};

} // namespace connector::service
