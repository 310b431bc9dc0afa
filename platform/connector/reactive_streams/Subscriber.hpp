/// The receiver of a stream.
#pragma once

#include <connector/reactive_streams/Subscription.hpp>

#include <exception>
#include <memory>

namespace connector::reactive_streams {

/// Receives the values of one stream. The publisher documents which thread calls, and which locks
/// that thread holds. The order of the virtual functions is part of the binary interface.
template <typename T>
class __attribute__((visibility("default"))) Subscriber {
public:
    virtual ~Subscriber() = default;

    /// The first call.
    /// @param subscription  requests values and cancels the stream. It does not keep the publisher
    ///                      alive.
    virtual void onSubscribe(std::weak_ptr<Subscription> subscription) = 0;

    /// The stream ended without a failure. No call follows.
    virtual void onComplete() = 0;

    /// The subscriber's cancellation took effect. Only publishers that confirm cancellations call
    /// this.
    virtual void onCancelled() {}

    /// The next value. There are never more calls than values were requested.
    virtual void onNext(const T& value) = 0;

    /// The stream failed. No call follows.
    virtual void onError(std::exception_ptr error) = 0;
};

} // namespace connector::reactive_streams
