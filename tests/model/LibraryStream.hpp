/// The library's publisher as a stream.
#pragma once

#include "Stream.hpp"

#include <connector/configuration/OptionValue.hpp>

#include <boost/variant/get.hpp>

#include <exception>
#include <memory>
#include <utility>

namespace test::model {

inline int numberIn(int value) {
    return value;
}

inline int numberIn(const connector::configuration::OptionValue& value) {
    return boost::get<int>(value);
}

/// @tparam T  int, or an option value that holds one
template <typename T>
class LibraryStream final : public Stream {
public:
    using Publisher = connector::reactive_streams::CachedValuePublisher<T>;

    explicit LibraryStream(std::shared_ptr<Publisher> newPublisher)
        : publisher(std::move(newPublisher)), observed(publisher) {}

    // The copies keep the publisher alive during a call, in which the subscriber may release it.

    void offer(int value) override {
        if (const auto kept = publisher)
            kept->onNext(T(value));
    }

    void subscribe(std::shared_ptr<Listener> listener) override {
        if (const auto kept = publisher)
            kept->subscribe(std::make_shared<Adapter>(*this, std::move(listener)));
    }

    void followCompletion(std::function<void(bool)> onEnd) override {
        if (publisher)
            publisher->completionFuture().then(
                [onEnd = std::move(onEnd)](connector::Future<bool>& end) { onEnd(end.get()); });
    }

    void request(std::uint64_t count) override {
        if (const auto alive = subscription.lock())
            alive->request(count);
    }

    void cancel() override {
        if (const auto alive = subscription.lock())
            alive->cancel();
    }

    void release() override { std::exchange(publisher, nullptr).reset(); }

    bool isAlive() const override { return !observed.expired(); }

private:
    using Subscription = connector::reactive_streams::Subscription;

    class Adapter final : public connector::reactive_streams::Subscriber<T> {
    public:
        Adapter(LibraryStream& newStream, std::shared_ptr<Listener> newListener)
            : stream(newStream), listener(std::move(newListener)) {}

        void onSubscribe(std::weak_ptr<Subscription> subscription) override {
            stream.subscription = std::move(subscription);
            listener->onSubscribe();
        }
        void onNext(const T& value) override { listener->onNext(numberIn(value)); }
        void onComplete() override { listener->onComplete(); }
        void onCancelled() override { listener->onUnexpected("onCancelled"); }
        void onError(std::exception_ptr) override { listener->onUnexpected("onError"); }

    private:
        LibraryStream& stream;
        const std::shared_ptr<Listener> listener;
    };

    std::shared_ptr<Publisher> publisher;
    const std::weak_ptr<Publisher> observed;
    std::weak_ptr<Subscription> subscription;
};

} // namespace test::model
