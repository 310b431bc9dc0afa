/// A stream of values for one subscriber that never holds more than its newest undelivered ones.
///
/// The producer offers values with onNext, from any thread; the subscriber asks for them through its
/// subscription, from any thread. What was not asked for in time is dropped, oldest first, so a slow
/// subscriber gets the present and not a backlog.
///
///     Active ----> Completing ----> Completed     (destroyed, or drained while Completing)
///        |             |
///        '-------------+----------> Cancelled     (the subscriber cancelled)
///
/// Completed, Cancelled and Errored are final. Nothing here enters Completing or Errored: they are
/// kept so that every state which a stream can be in is answered.
///
/// Threads and locks: the publisher's mutex guards all of its fields and is released around every
/// call into the subscriber and into the finish callback, so both may call back into the publisher
/// and into whatever the producer locks. A producer that offers values under a lock of its own
/// takes that lock first and the publisher's second; the publisher never takes them the other way
/// round.
///
/// One subscriber call at a time is not promised when several threads offer values at once: see
/// onNext.
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
    Completed = 2,  ///< ended well; the completion future is true
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
    /// @param onFinish  called once, without the publisher's lock, when the stream completes or is
    ///                  cancelled. An empty std::function throws std::bad_function_call then, which
    ///                  in the destructor ends the program.
    /// @param capacity  how many undelivered values are kept: 0 keeps one like 1, a negative number
    ///                  keeps all
    CachedValuePublisher(F onFinish, int capacity);

    /// Completes the stream if it has not ended: the completion future becomes true, the subscriber
    /// gets onComplete, the finish callback runs. What they throw ends the program.
    ~CachedValuePublisher() override;

    /// The future is resolved after the state changed and before the subscriber or the finish
    /// callback is called, without the publisher's lock.
    /// @throws std::runtime_error "Promise already returned a future." at the second call
    Future<bool> completionFuture() override;

    /// Attaches the one subscriber and calls its onSubscribe; values that wait are delivered as soon
    /// as it asks for them, from inside onSubscribe at the earliest. After the end of the stream
    /// onSubscribe is followed by onComplete or onError.
    /// @throws std::invalid_argument "Only one subscription allowed." at the second call, whatever
    ///         became of the first subscriber; "A null subscriber cannot be subscribed."
    /// @throws std::bad_weak_ptr when no std::shared_ptr owns the publisher
    /// @throws what the subscriber throws
    void subscribe(std::shared_ptr<Subscriber<T>> newSubscriber) override;

    /// Offers a value. After the end of the stream it is dropped.
    ///
    /// When the subscriber waits for a value and none is queued, it gets this one at once, on this
    /// thread, without a copy. This way round the queue does not ask whether a delivery is running:
    /// with several producers the subscriber can be called by two threads at once, and its own
    /// onNext can be entered again when it causes another value itself.
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
    void finish(Lock& lock, PublisherState finalState);

    bool isLive() const {
        return state == PublisherState::Active || state == PublisherState::Completing;
    }

    // Guards everything below. Lock order: the producer's locks (for a watched option, the
    // configuration's mutex) come before this one; no lock is taken under it but that of the
    // completion future.
    std::mutex mutex;
    std::int64_t capacity; // compared as unsigned: a negative one is no limit
    std::deque<T> pending; // oldest first
    F onFinish;
    Promise<bool> completion;
    std::exception_ptr error;
    std::shared_ptr<Subscriber<T>> subscriber; // set once, kept until the publisher goes
    std::shared_ptr<Subscription> subscription;
    std::uint64_t demand = 0; // values asked for and not yet delivered
    PublisherState state = PublisherState::Active;
    bool draining = false; // the delivery loop runs, on whatever thread
};

/// What the subscriber holds. It does not keep the publisher alive, and does nothing without it.
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

/// Marks the delivery loop as running, and as over again however it is left: a subscriber that
/// throws must not silence its stream for good.
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
    Lock lock(mutex);
    complete(lock);
    subscriber.reset();
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
    Lock lock(mutex);
    if (subscriber)
        throw std::invalid_argument(connector::detail::errors::secondSubscription);
    const auto newSubscription =
        std::make_shared<CachedValueSubscription>(this->shared_from_this());
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
    while (!pending.empty() && pending.size() >= static_cast<std::uint64_t>(capacity))
        pending.pop_front();
    pending.push_back(value);
    drain(lock);
}

/// Delivers what is queued and asked for. REQUIRES: lock held, on entry and on return.
template <typename T, typename F>
void CachedValuePublisher<T, F>::drain(Lock& lock) {
    if (draining)
        return; // the loop that runs sees what changed
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
    // Saturates: a demand that no counter can hold is no limit, not a small number.
    demand += std::min(count, std::numeric_limits<std::uint64_t>::max() - demand);
    drain(lock);
    completeIfDrained(lock);
}

template <typename T, typename F>
void CachedValuePublisher<T, F>::cancel() {
    Lock lock(mutex);
    if (!isLive())
        return;
    finish(lock, PublisherState::Cancelled);
    onFinish();
}

template <typename T, typename F>
void CachedValuePublisher<T, F>::completeIfDrained(Lock& lock) {
    if (state == PublisherState::Completing && pending.empty())
        complete(lock);
}

/// Ends the stream well, unless it has ended. REQUIRES: lock held, on entry and on return.
template <typename T, typename F>
void CachedValuePublisher<T, F>::complete(Lock& lock) {
    if (!isLive())
        return;
    finish(lock, PublisherState::Completed);
    if (subscriber)
        subscriber->onComplete();
    onFinish();
    lock.lock();
}

/// Makes the state final and tells the completion future. Releases `lock` first, since a
/// continuation of that future may call anything, the publisher included.
template <typename T, typename F>
void CachedValuePublisher<T, F>::finish(Lock& lock, PublisherState finalState) {
    state = finalState;
    lock.unlock();
    completion.setValue(finalState == PublisherState::Completed);
}

} // namespace connector::reactive_streams
