/// The slot in which one result waits for its reader.
///
/// A state is resolved once, by a Promise or by a factory such as makeReadyFuture, and read once,
/// through a Future. It lives as long as a handle on it does. Everything here may be called from any
/// thread; the state's own mutex is never held while a continuation runs or a waiter is woken.
///
///     Pending --setValue-----------------> Value       (final)
///        |----setException, abandon------> Exception   (final)
///        '----cancel---------------------> Cancelled   (final)
///
/// Most results are resolved before anybody holds a Future on them, so the costs that count are two
/// allocations (this object with its control block; the cell of the result) and one lock.
#pragma once

#include <connector/Export.hpp>
#include <connector/async/detail/Errors.hpp>

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace connector {

template <typename T>
class Future;

namespace detail {

enum class FutureStatus : std::uint32_t {
    Pending = 0,   ///< no result yet; readers wait
    Value = 1,     ///< holds a T
    Exception = 2, ///< holds a std::exception_ptr
    Cancelled = 3, ///< will never hold a result
};

/// What runs when a state is resolved. The state owns it, and deletes it after it has run or, if it
/// never ran, in its own destructor.
template <typename T>
class CONNECTOR_EXPORT FutureContinuation {
public:
    virtual ~FutureContinuation() = default;

    /// Called at most once, without any lock held, on the thread that resolved the state (or that
    /// attached the continuation, if the state was resolved already).
    /// @param future  a valid future on the state; it lives only as long as the call
    virtual void invoke(Future<T>& future) = 0;
};

struct WithValue {};     ///< chooses the state that is born with a value
struct WithException {}; ///< chooses the state that is born with an exception

template <typename T>
class CONNECTOR_EXPORT SharedFutureState
    : public std::enable_shared_from_this<SharedFutureState<T>> {
public:
    /// A pending state. getFuture and continuations need it to be owned by a std::shared_ptr.
    SharedFutureState() = default;

    /// A state that is born with its result. Nobody knows it yet, so it takes no lock and wakes nobody,
    /// which is a third of what a result costs that is known already: most are.
    /// @param value  not null; becomes the cell of the result
    SharedFutureState(WithValue, std::unique_ptr<T>&& value)
        : result(value.release()), status(FutureStatus::Value) {}
    SharedFutureState(WithException, std::exception_ptr&& exception)
        : result(new std::exception_ptr(std::move(exception))), status(FutureStatus::Exception) {}

    ~SharedFutureState();

    SharedFutureState(const SharedFutureState&) = delete;
    SharedFutureState& operator=(const SharedFutureState&) = delete;

    /// Resolves with a value; runs the continuation, if there is one, before it returns.
    /// On a cancelled state the value is dropped.
    /// @throws std::runtime_error "Promise already resolved." when there is a result already
    /// @throws std::bad_weak_ptr when a continuation is to run and no std::shared_ptr owns the state
    /// @throws what the continuation throws
    void setValue(T value);

    /// Resolves with an exception; otherwise as setValue.
    /// @throws std::invalid_argument "A promise cannot be failed with a null exception."
    void setException(std::exception_ptr exception);

    /// @return the one future of this state
    /// @throws std::runtime_error "Promise already returned a future." at the second call
    /// @throws std::bad_weak_ptr when no std::shared_ptr owns the state
    Future<T> getFuture();

    /// Waits until the state is resolved, without a time limit, and takes the result out.
    /// @return the value, moved out of the state
    /// @throws the stored exception itself
    /// @throws std::runtime_error "Future already returned it's value or has an associated
    ///         continuation." at once, when get was called before or a continuation waits here
    /// @throws std::runtime_error "Future has been cancelled."
    T get();

    /// Says that nobody will resolve this state any more: a pending one fails with
    /// std::runtime_error "Promise destroyed before it provided a value.". Waiters are woken in
    /// any case.
    void abandon();

    /// Attaches what is to run when the state is resolved; when it is resolved already, runs it at
    /// once, on this thread. A continuation of a cancelled state never runs.
    /// @throws std::runtime_error "Future already returned it's value or has an associated
    ///         continuation." when get was called before or another continuation waits here
    /// @throws std::invalid_argument "A null continuation cannot be attached."
    /// @throws std::bad_weak_ptr and what the continuation throws, when it is run at once
    /// @param self  the state, for one that does not know itself: see ReadyState
    void setContinuation(std::unique_ptr<FutureContinuation<T>> newContinuation,
                         std::shared_ptr<SharedFutureState> self = nullptr);

    /// Gives the result up, if it is still pending, and wakes the waiters.
    /// @return whether the state was pending and is now cancelled
    bool cancel();

private:
    using Lock = std::unique_lock<std::mutex>;

    /// `Result` is T with status Value or std::exception_ptr with status Exception; it is moved from.
    template <typename Result>
    void resolve(FutureStatus newStatus, Result&& newResult);
    void announce(Lock& lock, std::shared_ptr<SharedFutureState> self = nullptr);
    void runContinuation(Lock& lock, std::shared_ptr<SharedFutureState> self);

    bool hasResult() const {
        return status == FutureStatus::Value || status == FutureStatus::Exception;
    }

    std::mutex mutex; // guards everything below; the innermost lock: nothing is taken under it
    std::condition_variable condition; // signalled whenever the state is resolved
    void* result = nullptr; // owns a T or a std::exception_ptr, as status says; null otherwise
    std::unique_ptr<FutureContinuation<T>> continuation;
    FutureStatus status = FutureStatus::Pending;
    bool futureRetrieved = false;
    bool valueTaken = false; // get was called: the value is gone or about to go
};

} // namespace detail
} // namespace connector

// The definitions below make futures, so whoever includes this header gets their class, too.
#include <connector/async/Future.hpp>

namespace connector::detail {

template <typename T>
SharedFutureState<T>::~SharedFutureState() {
    // No lock: whoever let the last handle go has seen everything that was done through the others.
    if (status == FutureStatus::Value)
        delete static_cast<T*>(result);
    else if (status == FutureStatus::Exception)
        delete static_cast<std::exception_ptr*>(result);
}

template <typename T>
void SharedFutureState<T>::setValue(T value) {
    resolve(FutureStatus::Value, std::move(value));
}

template <typename T>
void SharedFutureState<T>::setException(std::exception_ptr exception) {
    if (!exception)
        throw std::invalid_argument(errors::nullException); // rethrowing it would end the process
    resolve(FutureStatus::Exception, std::move(exception));
}

template <typename T>
template <typename Result>
void SharedFutureState<T>::resolve(FutureStatus newStatus, Result&& newResult) {
    Lock lock(mutex);
    if (status == FutureStatus::Cancelled)
        return;
    if (status != FutureStatus::Pending)
        throw std::runtime_error(errors::alreadyResolved);
    result = new Result(std::move(newResult));
    status = newStatus;
    announce(lock);
}

/// Tells the continuation, or else the waiters, that the state changed. Leaves `lock` released: what
/// runs or wakes now may use the state.
template <typename T>
void SharedFutureState<T>::announce(Lock& lock, std::shared_ptr<SharedFutureState> self) {
    if (continuation && hasResult())
        runContinuation(lock, std::move(self));
    else
        lock.unlock();
    condition.notify_all();
}

template <typename T>
void SharedFutureState<T>::runContinuation(Lock& lock, std::shared_ptr<SharedFutureState> self) {
    const std::unique_ptr<FutureContinuation<T>> runNow = std::move(continuation);
    // The continuation reads the result as if nobody had asked for it before.
    futureRetrieved = false;
    valueTaken = false;
    lock.unlock();

    Future<T> future(self ? std::move(self) : this->shared_from_this());
    runNow->invoke(future);
}

template <typename T>
Future<T> SharedFutureState<T>::getFuture() {
    const Lock lock(mutex);
    if (futureRetrieved)
        throw std::runtime_error(errors::futureAlreadyRetrieved);
    futureRetrieved = true;
    return Future<T>(this->shared_from_this());
}

template <typename T>
T SharedFutureState<T>::get() {
    std::shared_ptr<SharedFutureState> keptAlive; // before the lock, so that it goes after it
    Lock lock(mutex);
    if (valueTaken || continuation)
        throw std::runtime_error(errors::alreadyTaken);
    valueTaken = true;
    if (status == FutureStatus::Pending) {
        keptAlive = this->weak_from_this().lock();
        condition.wait(lock, [this] { return status != FutureStatus::Pending; });
    }

    switch (status) {
    case FutureStatus::Value:
        return std::move(*static_cast<T*>(result));
    case FutureStatus::Exception: {
        const std::exception_ptr exception = *static_cast<std::exception_ptr*>(result);
        lock.unlock();
        std::rethrow_exception(exception);
    }
    case FutureStatus::Cancelled:
        throw std::runtime_error(errors::cancelled);
    case FutureStatus::Pending:
        break;
    }
    throw std::runtime_error(errors::invalidStatus);
}

template <typename T>
void SharedFutureState<T>::abandon() {
    Lock lock(mutex);
    if (status == FutureStatus::Pending) {
        result = new std::exception_ptr(
            std::make_exception_ptr(std::runtime_error(errors::promiseAbandoned)));
        status = FutureStatus::Exception;
    }
    announce(lock);
}

template <typename T>
void SharedFutureState<T>::setContinuation(std::unique_ptr<FutureContinuation<T>> newContinuation,
                                           std::shared_ptr<SharedFutureState> self) {
    if (!newContinuation)
        throw std::invalid_argument(errors::nullContinuation);
    Lock lock(mutex);
    if (valueTaken || continuation)
        throw std::runtime_error(errors::alreadyTaken);
    continuation = std::move(newContinuation);
    if (status != FutureStatus::Pending)
        announce(lock, std::move(self));
}

template <typename T>
bool SharedFutureState<T>::cancel() {
    Lock lock(mutex);
    if (status != FutureStatus::Pending)
        return false;
    status = FutureStatus::Cancelled;
    announce(lock);
    return true;
}

} // namespace connector::detail
