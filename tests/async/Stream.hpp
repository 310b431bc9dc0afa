/// A publisher of numbers and a subscriber that records its calls.
#pragma once

#include "async/Internals.hpp"

#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// The calls in their order: "onSubscribe", "onNext 7", "onComplete", "onError TEXT",
/// "onCancelled", "finish", and what a test adds.
using Events = std::vector<std::string>;

/// Records every call, then calls the function that the test has set for it.
class RecordingSubscriber final : public connector::reactive_streams::Subscriber<int> {
public:
    explicit RecordingSubscriber(Events& newEvents) : events(newEvents) {}

    std::function<void()> inOnSubscribe = [] {};
    std::function<void(int)> inOnNext = [](int) {};
    std::function<void()> inOnComplete = [] {};
    std::function<void()> inOnError = [] {};
    std::weak_ptr<connector::reactive_streams::Subscription> subscription;

    void onSubscribe(std::weak_ptr<connector::reactive_streams::Subscription> newOne) override {
        subscription = std::move(newOne);
        events.push_back("onSubscribe");
        inOnSubscribe();
    }
    void onComplete() override {
        events.push_back("onComplete");
        inOnComplete();
    }
    void onCancelled() override { events.push_back("onCancelled"); }
    void onNext(const int& value) override {
        events.push_back("onNext " + std::to_string(value));
        inOnNext(value);
    }
    void onError(std::exception_ptr error) override {
        events.push_back("onError " + textOf(error));
        inOnError();
    }

private:
    static std::string textOf(const std::exception_ptr& error) {
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& thrown) {
            return thrown.what();
        }
    }

    Events& events;
};

/// Declare it first: its callbacks use it until it is destroyed.
class Stream {
public:
    explicit Stream(int capacity = 1)
        : subscriber(std::make_shared<RecordingSubscriber>(events)),
          publisher(std::make_shared<IntPublisher>([this] { finished(); }, capacity)) {}
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    void subscribe() { publisher->subscribe(subscriber); }
    void offer(std::initializer_list<int> values) {
        for (const int value : values)
            publisher->onNext(value);
    }
    void request(std::uint64_t count) { subscriber->subscription.lock()->request(count); }
    void cancel() { subscriber->subscription.lock()->cancel(); }
    void destroy() { publisher.reset(); }

    /// @return the events since the last call
    Events take() { return std::exchange(events, {}); }

    Events events;
    std::function<void()> inFinish = [] {};
    std::shared_ptr<RecordingSubscriber> subscriber;
    std::shared_ptr<IntPublisher> publisher;

private:
    void finished() {
        events.push_back("finish");
        inFinish();
    }
};

/// A stream whose subscriber is attached. Its events start after onSubscribe.
class SubscribedStream : public Stream {
public:
    explicit SubscribedStream(int capacity = 1) : Stream(capacity) {
        subscribe();
        take();
    }
};

} // namespace test
