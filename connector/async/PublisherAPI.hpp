/// The interface of all publishers of values.
#pragma once

#include <connector/async/Future.hpp>
#include <connector/reactive_streams/Publisher.hpp>
#include <connector/reactive_streams/Subscriber.hpp>

#include <memory>

namespace connector::reactive_streams {

template <typename T>
class CONNECTOR_EXPORT PublisherAPI : public Publisher {
public:
    ~PublisherAPI() override = default;

    /// @return a future that says how the stream ended: true when it completed, false when it was
    ///         cancelled
    virtual Future<bool> completionFuture() = 0;

    /// Attaches a subscriber and calls its onSubscribe.
    virtual void subscribe(std::shared_ptr<Subscriber<T>> subscriber) = 0;
};

} // namespace connector::reactive_streams
