/// What a subscriber controls its stream with.
#pragma once

#include <cstdint>

namespace connector::reactive_streams {

/// Requests values and cancels the stream. Both operations may be called from any thread and from
/// inside the subscriber's callbacks.
class __attribute__((visibility("default"))) Subscription {
public:
    virtual ~Subscription() = default;

    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

    /// Requests `count` values in addition to those requested before.
    virtual void request(std::uint64_t count) = 0;

    /// Cancels the stream.
    virtual void cancel() = 0;

protected:
    Subscription() = default;
};

} // namespace connector::reactive_streams
