/// What a publisher calls.
#pragma once

#include <connector/reactive_streams/Subscription.hpp>

#include <exception>
#include <memory>

namespace connector::reactive_streams {

/// Receives the values of one stream. Which thread calls, and which locks it holds, is the
/// publisher's to say. The order of the operations is part of the binary interface.
template <typename T>
class __attribute__((visibility("default"))) Subscriber {
public:
    virtual ~Subscriber() = default;

    /// The first call of all.
    /// @param subscription  asks for values and ends the stream; it does not keep the publisher alive
    virtual void onSubscribe(std::weak_ptr<Subscription> subscription) = 0;

    /// The stream ended well. No call follows.
    virtual void onComplete() = 0;

    /// The subscriber's cancellation took effect; for publishers that confirm one.
    virtual void onCancelled() {}

    /// The next value; never more of them than were requested.
    virtual void onNext(const T& value) = 0;

    /// The stream failed. No call follows.
    virtual void onError(std::exception_ptr error) = 0;
};

} // namespace connector::reactive_streams
