/// A publisher of either side, in the hands of a program.
#pragma once

#include "Listener.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace test::model {

/// Once let go of, it offers, subscribes and follows nothing any more; what the subscriber holds, the
/// subscription, goes on working for as long as somebody else keeps the publisher.
class Stream {
public:
    virtual ~Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    virtual void offer(int value) = 0;
    virtual void subscribe(std::shared_ptr<Listener> listener) = 0;
    virtual void letGo() = 0;

    /// Takes the completion future and has `onEnd` called with what becomes of it.
    virtual void followCompletion(std::function<void(bool)> onEnd) = 0;

    // Nothing happens before a subscriber got its subscription.
    virtual void request(std::uint64_t count) = 0;
    virtual void cancel() = 0;

    virtual bool isAlive() const = 0;

protected:
    Stream() = default;
};

} // namespace test::model
