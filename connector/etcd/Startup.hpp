/// What a source does while the engine has not answered yet.
#pragma once

#include <chrono>
#include <cstdint>

namespace connector::etcd {

/// Made by one of the three functions.
class Startup {
public:
    enum class Kind : std::uint8_t { Wait, Cached, Empty };

    /// The constructor of the source waits until the engine has answered. When it has not answered
    /// within the time, the source begins with the cache file; without one, the constructor throws.
    static Startup Wait(std::chrono::milliseconds timeout) { return {Kind::Wait, timeout}; }

    /// The source begins with the cache file, at once. Without the file it begins empty.
    static Startup Cached() { return {Kind::Cached, {}}; }

    /// The source begins empty, at once. The cache file is written, but not read.
    static Startup Empty() { return {Kind::Empty, {}}; }

    Kind kind() const { return chosen; }

    /// @return how long Wait waits
    std::chrono::milliseconds timeout() const { return time; }

private:
    Startup(Kind newChosen, std::chrono::milliseconds newTime) : chosen(newChosen), time(newTime) {}

    Kind chosen;
    std::chrono::milliseconds time;
};

} // namespace connector::etcd
