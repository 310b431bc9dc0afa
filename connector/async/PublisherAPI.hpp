/// What every publisher of values offers.
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

    /// Attaches a subscriber. From now on the publisher calls it.
    virtual void subscribe(std::shared_ptr<Subscriber<T>> subscriber) = 0;
};

} // namespace connector::reactive_streams
