/// Rules of Reactive Streams 1.0.4 for publishers (1.x) and subscriptions (3.x). Each function
/// tests one rule and reports how a publisher breaks it. Not tested are optional rules (1.2, 1.6,
/// 1.11, 3.10, 3.11 and 3.14), rules about time (3.4 and 3.5), 3.1, which applies to subscribers,
/// and 3.15 and 3.16, because any exception fails a test anyway.
///
/// PublisherConformance.hpp defines tests for them.
#pragma once

#include <connector/testing/PublisherFactory.hpp>
#include <connector/testing/Verdict.hpp>

#include <connector/reactive_streams/Subscriber.hpp>
#include <connector/reactive_streams/Subscription.hpp>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace connector::testing {

namespace kit {

inline constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

/// Records every signal. Its functions may be called on any thread, but the publisher must
/// serialise the signals.
template <typename T>
class Recorder : public reactive_streams::Subscriber<T> {
public:
    using Subscription = reactive_streams::Subscription;

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
        wasFirst = signals == 0;
        ++signals;
        subscription = std::move(newSubscription);
        if (inOnSubscribe)
            inOnSubscribe();
    }
    void onNext(const T& value) override {
        const int depth = ++running;
        deepest = std::max(deepest.load(), depth);
        ++signals;
        if (hasEnded)
            wasSignalledAfterItsEnd = true;
        std::this_thread::yield();
        if (keepsValues)
            values.push_back(value);
        ++received;
        if (inOnNext)
            inOnNext();
        --running;
    }
    void onComplete() override {
        ++completions;
        end();
    }
    void onError(std::exception_ptr newError) override {
        ++errors;
        error = newError;
        end();
    }

    void request(std::uint64_t count) {
        if (const auto alive = subscription.lock())
            alive->request(count);
    }
    void cancel() {
        if (const auto alive = subscription.lock())
            alive->cancel();
    }

    bool wasFirst = false;
    bool keepsValues = true;
    std::vector<T> values;
    std::atomic<int> received{0};
    std::atomic<int> signals{0};
    std::atomic<int> deepest{0}; // the most calls of onNext that ran at once
    int completions = 0;
    int errors = 0;
    bool wasSignalledAfterItsEnd = false;
    std::exception_ptr error;
    std::function<void()> inOnSubscribe, inOnNext;

private:
    void end() {
        ++signals;
        if (hasEnded)
            wasSignalledAfterItsEnd = true;
        hasEnded = true;
    }

    std::weak_ptr<Subscription> subscription;
    std::atomic<int> running{0};
    std::atomic<bool> hasEnded{false};
};

/// A publisher with a subscriber.
template <typename T>
struct Stream {
    explicit Stream(const PublisherFactory<T>& newFactory, std::uint64_t demand = 0)
        : factory(newFactory), publisher(factory.make()),
          recorder(std::make_shared<Recorder<T>>()) {
        publisher->subscribe(recorder);
        if (demand > 0)
            recorder->request(demand);
    }

    void offer(std::size_t index) { factory.offer(*publisher, factory.values[index]); }
    void complete() { factory.complete(std::move(publisher)); }

    const PublisherFactory<T> factory;
    std::shared_ptr<reactive_streams::PublisherAPI<T>> publisher;
    std::shared_ptr<Recorder<T>> recorder;
};

} // namespace kit

/// 1.1: a publisher sends no more values than were requested.
template <typename T>
Verdict noMoreThanRequested(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory);
    stream.offer(0);
    if (stream.recorder->received > 0)
        return Verdict::brokenAs("a value came before one was requested");
    stream.recorder->request(2);
    for (int i = 0; i < 5; ++i)
        stream.offer(1);
    return Verdict::keptIf(stream.recorder->received <= 2, "more values came than were requested");
}

/// 1.3: signals are serialised, also when several threads offer values.
template <typename T>
Verdict signalsComeOneByOne(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory);
    stream.recorder->keepsValues = false;
    stream.recorder->request(kit::unlimited);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 2; ++thread)
        threads.emplace_back([&stream] {
            for (int i = 0; i < 2000; ++i)
                stream.offer(0);
        });
    for (std::thread& thread : threads)
        thread.join();
    return Verdict::keptIf(stream.recorder->deepest <= 1, "two signals came at the same time");
}

/// 1.4: a failure is signalled with onError.
template <typename T>
Verdict aFailureIsTold(const PublisherFactory<T>& factory) {
    if (!factory.fail)
        return Verdict::notApplicable();
    kit::Stream<T> stream(factory, kit::unlimited);
    factory.fail(*stream.publisher, std::make_exception_ptr(std::range_error("failed")));
    return Verdict::keptIf(stream.recorder->errors == 1 && stream.recorder->completions == 0,
                           "a failure was not reported by exactly one onError");
}

/// 1.5: successful completion is signalled with onComplete.
template <typename T>
Verdict anEndIsTold(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory, kit::unlimited);
    stream.complete();
    return Verdict::keptIf(stream.recorder->completions == 1 && stream.recorder->errors == 0,
                           "a normal end was not reported by exactly one onComplete");
}

/// 1.7: no signal follows onComplete or onError.
template <typename T>
Verdict nothingFollowsTheEnd(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory, kit::unlimited);
    if (factory.fail) {
        factory.fail(*stream.publisher, std::make_exception_ptr(std::range_error("failed")));
        stream.offer(0);
    }
    stream.complete();
    stream.recorder->request(1);
    return Verdict::keptIf(!stream.recorder->wasSignalledAfterItsEnd,
                           "a signal came after the end");
}

/// 1.8 and 3.12: the signals of a cancelled subscription stop.
template <typename T>
Verdict aCancelledStreamIsSilent(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory, kit::unlimited);
    stream.offer(0);
    const int before = stream.recorder->signals;
    stream.recorder->cancel();
    stream.offer(1);
    stream.complete();
    return Verdict::keptIf(stream.recorder->signals == before,
                           "a signal came after the subscription was cancelled");
}

/// 1.9: onSubscribe precedes all other signals, and subscribing null throws.
template <typename T>
Verdict onSubscribeComesFirst(const PublisherFactory<T>& factory) {
    const auto publisher = factory.make();
    factory.offer(*publisher, factory.values[0]);
    try {
        publisher->subscribe(nullptr);
        return Verdict::brokenAs("a null subscriber was taken");
    } catch (const std::exception&) {
    }
    const auto recorder = std::make_shared<kit::Recorder<T>>();
    publisher->subscribe(recorder);
    return Verdict::keptIf(recorder->signals == 1 && recorder->wasFirst,
                           "the first and only signal of subscribe is not onSubscribe");
}

/// 1.10: another subscriber may subscribe; a publisher that supports only one signals onError to
/// the other.
template <typename T>
Verdict anotherSubscriberIsServedOrTold(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory, kit::unlimited);
    const auto second = std::make_shared<kit::Recorder<T>>();
    try {
        stream.publisher->subscribe(second);
    } catch (...) {
        return Verdict::brokenAs("subscribe throws for a second subscriber");
    }
    return Verdict::keptIf(second->wasFirst, "a second subscriber was not called");
}

/// 3.2: a subscriber may request from onSubscribe and from onNext.
template <typename T>
Verdict requestsFromSignalsAreServed(const PublisherFactory<T>& factory) {
    const auto publisher = factory.make();
    const auto recorder = std::make_shared<kit::Recorder<T>>();
    auto* const raw = recorder.get();
    recorder->inOnSubscribe = [raw] { raw->request(1); };
    recorder->inOnNext = [raw] { raw->request(1); };
    publisher->subscribe(recorder);
    for (int i = 0; i < 3; ++i)
        factory.offer(*publisher, factory.values[static_cast<std::size_t>(i)]);
    return Verdict::keptIf(recorder->values ==
                               std::vector<T>(factory.values.begin(), factory.values.begin() + 3),
                           "a request from onSubscribe or onNext was not served");
}

/// 3.3: the recursion between request and onNext is bounded.
template <typename T>
Verdict recursionIsBounded(const PublisherFactory<T>& factory) {
    const auto publisher = factory.make();
    const auto recorder = std::make_shared<kit::Recorder<T>>();
    auto* const raw = recorder.get();
    recorder->keepsValues = false;
    recorder->inOnNext = [raw] { raw->request(1); };
    for (int i = 0; i < 1000; ++i)
        factory.offer(*publisher, factory.values[0]);
    publisher->subscribe(recorder);
    recorder->request(1);
    for (int i = 0; i < 1000; ++i)
        factory.offer(*publisher, factory.values[0]);
    return Verdict::keptIf(recorder->deepest <= 2,
                           "request calls onNext inside of onNext, and so on");
}

/// 3.6 and 3.7: request and cancel do nothing after cancel.
template <typename T>
Verdict afterCancelNothingHappens(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory);
    stream.offer(0);
    const int before = stream.recorder->signals;
    stream.recorder->cancel();
    stream.recorder->request(5);
    stream.recorder->cancel();
    return Verdict::keptIf(stream.recorder->signals == before,
                           "request or cancel did something after cancel");
}

/// 3.8: the demands of several requests add up.
template <typename T>
Verdict demandsAddUp(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory);
    stream.recorder->request(1);
    stream.recorder->request(2);
    for (int i = 0; i < 3; ++i)
        stream.offer(static_cast<std::size_t>(i));
    return Verdict::keptIf(stream.recorder->received == 3, "two demands did not add up");
}

/// 3.9: a request for zero values fails the stream with std::invalid_argument.
template <typename T>
Verdict aRequestForNothingFails(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory);
    stream.recorder->request(0);
    if (stream.recorder->errors != 1)
        return Verdict::brokenAs("a request for nothing was not reported by onError");
    try {
        std::rethrow_exception(stream.recorder->error);
    } catch (const std::invalid_argument&) {
        return Verdict::kept();
    } catch (...) {
        return Verdict::brokenAs("the error of a request for nothing is no std::invalid_argument");
    }
}

/// 3.13: a cancelled subscription releases its subscriber.
template <typename T>
Verdict cancelReleasesTheSubscriber(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory);
    stream.recorder->cancel();
    stream.offer(0);
    const std::weak_ptr<kit::Recorder<T>> observed = stream.recorder;
    stream.recorder.reset();
    return Verdict::keptIf(observed.expired(), "the subscriber is kept after cancel");
}

/// 3.17: unlimited demand does not overflow.
template <typename T>
Verdict anyDemandIsPossible(const PublisherFactory<T>& factory) {
    kit::Stream<T> stream(factory);
    stream.recorder->request(kit::unlimited);
    stream.recorder->request(kit::unlimited);
    for (int i = 0; i < 3; ++i)
        stream.offer(static_cast<std::size_t>(i));
    return Verdict::keptIf(stream.recorder->received == 3 && stream.recorder->errors == 0,
                           "a demand without limit was not served");
}

} // namespace connector::testing
