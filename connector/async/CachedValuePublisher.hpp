/// A stream of values for one subscriber that keeps only the newest undelivered values.
///
/// The producer offers values with onNext, from any thread. The subscriber requests them through
/// its subscription, from any thread. When the queue is full, the oldest value is dropped, so a
/// slow subscriber gets current values and no backlog.
///
///     Active ----> Completing ----> Completed     (destroyed, or drained while Completing)
///        |             |
///        '-------------+----------> Cancelled     (the subscriber cancelled)
///
/// Completed, Cancelled and Errored are final. No operation enters Completing or Errored, but all
/// of them handle both states.
///
/// Threads and locks: the publisher's mutex guards all of its fields. It is not held during a call
/// of the subscriber, the finish callback or a continuation of the completion future, so these may
/// call the publisher and take locks of the producer. A producer that offers values under a lock of
/// its own takes that lock first and the publisher's second; the publisher never takes them in the
/// other order. Values are copied and destroyed under the mutex: a copy constructor or destructor
/// of T must not call the publisher.
///
/// Subscriber calls are not serialised when several threads offer values at once: see onNext.
///
/// Lifetime: the subscriber, the finish callback and continuations may drop the last pointer to the
/// publisher during subscribe, request and cancel; it is destroyed when the call is over. For
/// onNext the producer must keep the publisher alive.
#pragma once

#include <connector/Export.hpp>
#include <connector/async/Promise.hpp>
#include <connector/async/PublisherAPI.hpp>
#include <connector/async/detail/Errors.hpp>
#include <connector/reactive_streams/Subscription.hpp>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace connector::reactive_streams {

enum class PublisherState : std::uint32_t {
    Active = 0,     ///< accepts and delivers values
    Completing = 1, ///< completes as soon as the queue is empty
    Completed = 2,  ///< ended normally; the completion future is true
    Cancelled = 3,  ///< ended by the subscriber; the completion future is false
    Errored = 4,    ///< ended by an error; a late subscriber gets onError
};

/// @tparam T  the values; copied into the queue, moved out of it
/// @tparam F  the finish callback, called without arguments
template <typename T, typename F = std::function<void()>>
class CONNECTOR_EXPORT CachedValuePublisher
    : public PublisherAPI<T>,
      public std::enable_shared_from_this<CachedValuePublisher<T, F>> {
public:
    /// @param onFinish  called once, without the publisher's lock, when the stream has completed or
    ///                  is cancelled, even if the subscriber or a continuation of the completion
    ///                  future has thrown. An empty std::function throws std::bad_function_call
    ///                  then, which ends the program if the destructor calls it.
    /// @param capacity  how many undelivered values are kept: 0 keeps one like 1, a negative number
    ///                  keeps all
    CachedValuePublisher(F onFinish, int capacity);

    /// Completes the stream if it has not ended: the completion future becomes true, the subscriber
    /// gets onComplete, the finish callback runs. An exception from any of them ends the program.
    /// Needs no memory. The subscriber is released without the publisher's lock.
    ~CachedValuePublisher() override;

    /// The future is resolved after the state changed and before the subscriber or the finish
    /// callback is called, without the publisher's lock.
    /// @throws std::runtime_error "Promise already returned a future." at the second call
    Future<bool> completionFuture() override;

    /// Attaches the one subscriber and calls its onSubscribe, on this thread. Queued values are
    /// delivered as soon as the subscriber requests them, which it may do in onSubscribe. If the
    /// stream has ended, onComplete or onError follows onSubscribe, unless the stream was
    /// cancelled.
    /// @throws std::invalid_argument "A null subscriber cannot be subscribed."
    /// @throws std::invalid_argument "Only one subscription allowed." at the second call, even if
    ///         the first subscriber has cancelled
    /// @throws std::bad_weak_ptr when no std::shared_ptr owns the publisher
    /// @throws std::bad_alloc; no subscriber is attached
    /// @throws what the subscriber throws; it stays attached
    void subscribe(std::shared_ptr<Subscriber<T>> newSubscriber) override;

    /// Offers a value. After the end of the stream it is dropped.
    ///
    /// REQUIRES: the caller keeps the publisher alive during the call. The subscriber must not be
    /// able to drop the last pointer to it. (A pointer taken here would more than double the time
    /// of a delivery; a configuration holds one anyway.)
    ///
    /// If the subscriber has demand left and no value is queued, it gets this one at once, on this
    /// thread, without a copy. This path does not check whether a delivery is running: with several
    /// producers two threads can call the subscriber at the same time, and onNext of the subscriber
    /// is entered again if it causes another value itself.
    /// @throws std::bad_alloc; the queue is unchanged
    /// @throws what the subscriber throws; the value counts as delivered
    void onNext(const T& value);

private:
    class CachedValueSubscription;
    class Draining;
    using Lock = std::unique_lock<std::mutex>;

    void request(std::uint64_t count);
    void cancel();
    void drain(Lock& lock);
    void completeIfDrained(Lock& lock);
    void complete(Lock& lock);
    void end(Lock& lock, PublisherState finalState);
    template <typename First, typename Second>
    static void callBoth(First first, Second second);

    bool isLive() const {
        return state == PublisherState::Active || state == PublisherState::Completing;
    }

    // Guards everything below. Lock order: the producer's locks (for a watched option, the
    // configuration's mutex) come before this one; the only lock taken under it is that of the
    // completion future's state.
    std::mutex mutex;
    std::int64_t capacity; // compared as unsigned: a negative one is no limit
    std::deque<T> pending; // oldest first
    F onFinish;
    Promise<bool> completion;
    std::exception_ptr error;
    std::shared_ptr<Subscriber<T>> subscriber; // set once, kept until the publisher is destroyed
    std::shared_ptr<Subscription> subscription;
    std::uint64_t demand = 0; // values requested and not yet delivered
    PublisherState state = PublisherState::Active;
    bool draining = false; // the delivery loop runs, on this thread or another
};

/// The subscriber's handle on the publisher. It keeps the publisher alive during a call only, and
/// does nothing once the publisher is destroyed.
template <typename T, typename F>
class CachedValuePublisher<T, F>::CachedValueSubscription final : public Subscription {
public:
    explicit CachedValueSubscription(std::weak_ptr<CachedValuePublisher> newPublisher)
        : publisher(std::move(newPublisher)) {}

    void request(std::uint64_t count) override {
        if (const auto alive = publisher.lock())
            alive->request(count);
    }

    void cancel() override {
        if (const auto alive = publisher.lock())
            alive->cancel();
    }

private:
    const std::weak_ptr<CachedValuePublisher> publisher;
};

/// Sets the flag `draining`, and clears it even if the subscriber throws: while it is set, no other
/// delivery loop starts.
template <typename T, typename F>
class CachedValuePublisher<T, F>::Draining {
public:
    Draining(CachedValuePublisher& newPublisher, Lock& newLock)
        : publisher(newPublisher), lock(newLock) {
        publisher.draining = true;
    }
    ~Draining() {
        if (!lock.owns_lock())
            lock.lock();
        publisher.draining = false;
    }
    Draining(const Draining&) = delete;
    Draining& operator=(const Draining&) = delete;

private:
    CachedValuePublisher& publisher;
    Lock& lock;
};

template <typename T, typename F>
CachedValuePublisher<T, F>::CachedValuePublisher(F newOnFinish, int newCapacity)
    : capacity(newCapacity), onFinish(std::move(newOnFinish)) {
}

template <typename T, typename F>
CachedValuePublisher<T, F>::~CachedValuePublisher() {
    {
        Lock lock(mutex);
        complete(lock);
    }
    subscriber.reset(); // its destructor may call anything
    subscription.reset();
}

template <typename T, typename F>
Future<bool> CachedValuePublisher<T, F>::completionFuture() {
    const Lock lock(mutex);
    return completion.getFuture();
}

template <typename T, typename F>
void CachedValuePublisher<T, F>::subscribe(std::shared_ptr<Subscriber<T>> newSubscriber) {
    if (!newSubscriber)
        throw std::invalid_argument(connector::detail::errors::nullSubscriber);
    std::shared_ptr<CachedValuePublisher> keptAlive; // before the lock, so it is released after it
    Lock lock(mutex);
    if (subscriber)
        throw std::invalid_argument(connector::detail::errors::secondSubscription);
    keptAlive = this->shared_from_this();
    const auto newSubscription = std::make_shared<CachedValueSubscription>(keptAlive);
    subscription = newSubscription;
    subscriber = newSubscriber;

    const PublisherState stateNow = state;
    const std::exception_ptr errorNow = error;
    lock.unlock();
    newSubscriber->onSubscribe(newSubscription);
    if (stateNow == PublisherState::Completed) {
        newSubscriber->onComplete();
    } else if (stateNow == PublisherState::Errored) {
        newSubscriber->onError(errorNow);
    } else {
        lock.lock();
        drain(lock);
    }
}

template <typename T, typename F>
void CachedValuePublisher<T, F>::onNext(const T& value) {
    Lock lock(mutex);
    if (!isLive())
        return;
    if (subscriber && demand > 0 && pending.empty()) {
        --demand;
        lock.unlock();
        subscriber->onNext(value);
        return;
    }
    pending.push_back(value); // first, since it can fail
    while (pending.size() > 1 && pending.size() > static_cast<std::uint64_t>(capacity))
        pending.pop_front();
    drain(lock);
}

/// Delivers queued values as long as there is demand. REQUIRES: lock held, on entry and on return.
template <typename T, typename F>
void CachedValuePublisher<T, F>::drain(Lock& lock) {
    if (draining)
        return; // the running loop sees the change
    const Draining running(*this, lock);
    while (isLive() && subscriber && demand > 0 && !pending.empty()) {
        --demand;
        const T value = std::move(pending.front());
        pending.pop_front();
        lock.unlock();
        subscriber->onNext(value);
        lock.lock();
    }
    completeIfDrained(lock);
}

template <typename T, typename F>
void CachedValuePublisher<T, F>::request(std::uint64_t count) {
    Lock lock(mutex);
    // Saturates: a demand above the largest number means "no limit", not a small number.
    demand += std::min(count, std::numeric_limits<std::uint64_t>::max() - demand);
    drain(lock);
    completeIfDrained(lock);
}

template <typename T, typename F>
void CachedValuePublisher<T, F>::cancel() {
    Lock lock(mutex);
    if (!isLive())
        return;
    end(lock, PublisherState::Cancelled);
}

template <typename T, typename F>
void CachedValuePublisher<T, F>::completeIfDrained(Lock& lock) {
    if (state == PublisherState::Completing && pending.empty())
        complete(lock);
}

/// Ends the stream normally, unless it has ended. REQUIRES: lock held, on entry and on return.
/// `lock` is not held when an exception leaves.
template <typename T, typename F>
void CachedValuePublisher<T, F>::complete(Lock& lock) {
    if (!isLive())
        return;
    end(lock, PublisherState::Completed);
    lock.lock();
}

/// Makes the state final, then resolves the completion future and calls the subscriber and the
/// finish callback. Releases `lock` first, because all of these may call the publisher. Each of
/// them is called even if a previous one throws: a configuration removes a stream in its finish
/// callback.
template <typename T, typename F>
void CachedValuePublisher<T, F>::end(Lock& lock, PublisherState finalState) {
    state = finalState;
    lock.unlock();
    const bool isCompleted = finalState == PublisherState::Completed;
    const auto completeSubscriber = [&] {
        if (isCompleted && subscriber)
            subscriber->onComplete();
    };
    callBoth([&] { completion.setValue(isCompleted); },
             [&] { callBoth(completeSubscriber, [&] { onFinish(); }); });
}

/// Calls `first`, then `second`, even if `first` throws. If both throw, the exception of `second`
/// leaves.
template <typename T, typename F>
template <typename First, typename Second>
void CachedValuePublisher<T, F>::callBoth(First first, Second second) {
    try {
        first();
    } catch (...) {
        second();
        throw;
    }
    second();
}

} // namespace connector::reactive_streams
