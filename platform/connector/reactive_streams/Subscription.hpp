/// The link from a subscriber back to its publisher.
#pragma once

#include <cstdint>

namespace connector::reactive_streams {

/// Through its subscription a subscriber says how much it can take, and when it has had enough.
/// Both operations may be called from any thread and from inside the subscriber's own callbacks.
class __attribute__((visibility("default"))) Subscription {
public:
    virtual ~Subscription() = default;

    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

    /// Asks for `count` values more than were asked for before.
    virtual void request(std::uint64_t count) = 0;

    /// Ends the stream: no further value is wanted.
    virtual void cancel() = 0;

protected:
    Subscription() = default;
};

} // namespace connector::reactive_streams
