/// What an EtcdSource knows about its connection and its values.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace connector::etcd {

enum class State : std::uint8_t {
    Starting, ///< the engine has neither answered nor failed yet
    Current,  ///< the values follow the engine
    Stale,    ///< the values are the last ones: the engine cannot be followed
    Stopped,  ///< the source follows nothing any more
};

struct Status {
    State state = State::Starting;
    std::int64_t revision = 0;                   ///< of the table; 0: there was none yet
    std::chrono::system_clock::time_point since; ///< when the state began
    std::string failure; ///< the last one, with the endpoint; stays after the engine is back
    std::uint64_t clusterId = 0;
    std::uint64_t lists = 0;       ///< how often all keys were read
    std::uint64_t watches = 0;     ///< how often a watch began
    std::uint64_t changes = 0;     ///< of single keys, as the watches reported them
    std::uint64_t ignoredKeys = 0; ///< keys that are empty or no UTF-8, each time they were seen
    std::vector<std::string> unreadable; ///< keys whose newest value cannot be read, in order
};

} // namespace connector::etcd
