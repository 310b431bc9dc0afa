/// A publisher of the library or the model, as a program uses it.
#pragma once

#include "Listener.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace test::model {

/// After release(), offer, subscribe and followCompletion do nothing. The subscription of the
/// subscriber works for as long as another owner keeps the publisher alive.
class Stream {
public:
    virtual ~Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    virtual void offer(int value) = 0;
    virtual void subscribe(std::shared_ptr<Listener> listener) = 0;
    virtual void release() = 0;

    /// Takes the completion future and calls `onEnd` with its result.
    virtual void followCompletion(std::function<void(bool)> onEnd) = 0;

    // These do nothing before a subscriber has received its subscription.
    virtual void request(std::uint64_t count) = 0;
    virtual void cancel() = 0;

    virtual bool isAlive() const = 0;

protected:
    Stream() = default;
};

} // namespace test::model
