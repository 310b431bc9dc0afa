/// The state that a Promise and its Future share.
///
/// A state is resolved once, by a Promise or by a factory such as makeReadyFuture, and read once,
/// through a Future. Everything here may be called from any thread. The mutex of the state is never
/// held while a continuation runs or a waiting thread is woken.
///
/// The caller of a state keeps it alive during the call. Only a continuation that the call runs may
/// drop the last pointer to it.
///
///     Pending --setValue-----------------> Value       (final)
///        |----setException, abandon------> Exception   (final)
///        '----cancel---------------------> Cancelled   (final)
///
/// Most states are resolved before their Future exists. Such a result costs two allocations (this
/// object with its control block; the cell of the result), and reading it one lock.
#pragma once

#include <connector/Export.hpp>
#include <connector/async/detail/Errors.hpp>
#include <connector/async/detail/PreallocatedResults.hpp>

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace connector {

template <typename T>
class Future;

namespace detail {

enum class FutureStatus : std::uint32_t {
    Pending = 0,   ///< no result yet; get waits
    Value = 1,     ///< holds a T
    Exception = 2, ///< holds a std::exception_ptr
    Cancelled = 3, ///< will never hold a result
};

/// What runs when a state is resolved. The state owns it and deletes it after it has run. If it
/// never runs, the destructor of the state deletes it.
template <typename T>
class CONNECTOR_EXPORT FutureContinuation {
public:
    virtual ~FutureContinuation() = default;

    /// Called at most once, without the mutex of the state, on the thread that resolves the state,
    /// or on the thread that attaches the continuation if the state is resolved already. It may use
    /// the state, and drop the last pointer to it.
    /// @param future  a valid future on the state; it is destroyed after the call
    virtual void invoke(Future<T>& future) = 0;
};

struct WithValue {};     ///< selects the constructor of a state that already has a value
struct WithException {}; ///< selects the constructor of a state that already has an exception

template <typename T>
class CONNECTOR_EXPORT SharedFutureState
    : public std::enable_shared_from_this<SharedFutureState<T>> {
public:
    /// A pending state. getFuture and continuations need it to be owned by a std::shared_ptr.
    SharedFutureState() = default;

    /// A state that is constructed with its result. No other thread knows it yet, so the
    /// constructor takes no lock and wakes no thread, which saves a third of the time of
    /// makeReadyFuture.
    /// @param value  not null; becomes the cell of the result
    SharedFutureState(WithValue, std::unique_ptr<T>&& value)
        : result(value.release()), status(FutureStatus::Value) {}
    SharedFutureState(WithException, std::exception_ptr&& exception)
        : result(new std::exception_ptr(std::move(exception))), status(FutureStatus::Exception) {}

    ~SharedFutureState();

    SharedFutureState(const SharedFutureState&) = delete;
    SharedFutureState& operator=(const SharedFutureState&) = delete;

    /// Resolves with a value, and runs the continuation, if there is one, before it returns.
    /// On a cancelled state the value is dropped.
    /// @throws std::runtime_error "Promise already resolved." when there is a result already
    /// @throws std::bad_alloc when there is no memory for the cell of the result; the state is
    ///         unchanged. Never for a bool: see detail::PreallocatedResults
    /// @throws std::bad_weak_ptr when a continuation is to run and no std::shared_ptr owns the
    ///         state; the state is resolved
    /// @throws what the continuation throws; the state is resolved
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
    ///         continuation." without waiting, when get was called before or a continuation is
    ///         attached
    /// @throws std::runtime_error "Future has been cancelled."
    T get();

    /// Resolves a pending state with std::runtime_error "Promise destroyed before it provided a
    /// value.", and runs the continuation, if there is one. Wakes waiting threads whatever the
    /// status is. Needs no memory, because destructors call it.
    /// @throws std::bad_weak_ptr and what the continuation throws, as setValue does
    void abandon();

    /// Attaches a continuation. If the state has a result already, the continuation runs at once,
    /// on this thread. A continuation of a cancelled state never runs.
    ///
    /// Before the continuation runs, it is detached, and futureRetrieved and valueTaken are
    /// cleared. Then the first caller of get has the result: the continuation, through its future,
    /// or the holder of another handle.
    /// @param self  the state; needed for a ReadyState, which has no weak pointer to itself
    /// @throws std::invalid_argument "A null continuation cannot be attached."
    /// @throws std::runtime_error "Future already returned it's value or has an associated
    ///         continuation." when get was called before or another continuation is attached
    /// @throws std::bad_weak_ptr and what the continuation throws, when it runs at once
    void setContinuation(std::unique_ptr<FutureContinuation<T>> newContinuation,
                         std::shared_ptr<SharedFutureState> self = nullptr);

    /// Cancels a pending state and wakes waiting threads.
    /// @return whether the state was pending and is now cancelled
    bool cancel();

private:
    using Lock = std::unique_lock<std::mutex>;

    /// `Result` is T with status Value or std::exception_ptr with status Exception; it is moved
    /// from.
    template <typename Result>
    void resolve(FutureStatus newStatus, Result&& newResult);
    template <typename Result>
    static Result* makeCell(Result&& newResult);
    static std::exception_ptr* makeAbandonedCell();
    template <typename Result>
    void deleteCell();
    void announce(Lock& lock, std::shared_ptr<SharedFutureState> self = nullptr);
    void runContinuation(Lock& lock, std::shared_ptr<SharedFutureState> self);

    bool hasResult() const {
        return status == FutureStatus::Value || status == FutureStatus::Exception;
    }

    std::mutex mutex; // guards everything below; no other lock is taken while it is held
    std::condition_variable condition; // signalled whenever the state is resolved
    void* result = nullptr; // owns a T or a std::exception_ptr, as status says, unless it is one of
                            // the preallocated results; null otherwise
    std::unique_ptr<FutureContinuation<T>> continuation;
    FutureStatus status = FutureStatus::Pending;
    bool futureRetrieved = false;
    bool valueTaken = false; // get was called: the value is taken, or get waits for it
};

} // namespace detail
} // namespace connector

// The definitions below need the class Future.
#include <connector/async/Future.hpp>

namespace connector::detail {

template <typename T>
SharedFutureState<T>::~SharedFutureState() {
    // No lock: no other thread has a pointer to the state any more.
    if (status == FutureStatus::Value)
        deleteCell<T>();
    else if (status == FutureStatus::Exception)
        deleteCell<std::exception_ptr>();
}

template <typename T>
template <typename Result>
void SharedFutureState<T>::deleteCell() {
    constexpr bool canBePreallocated =
        std::is_same_v<Result, bool> || std::is_same_v<Result, std::exception_ptr>;
    if (canBePreallocated && preallocatedResults.contains(result))
        return;
    delete static_cast<Result*>(result);
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
    result = makeCell(std::move(newResult));
    status = newStatus;
    announce(lock);
}

/// Allocates the cell of a result. For a bool it cannot fail.
template <typename T>
template <typename Result>
Result* SharedFutureState<T>::makeCell(Result&& newResult) {
    if constexpr (std::is_same_v<Result, bool>) {
        bool* const cell = new (std::nothrow) bool(newResult);
        return cell != nullptr ? cell : preallocatedResults.value(newResult);
    } else {
        return new Result(std::move(newResult));
    }
}

/// Tells the continuation, or else waiting threads, that the state changed. Releases `lock` first,
/// because both use the state. The state may be gone on return if a continuation ran.
template <typename T>
void SharedFutureState<T>::announce(Lock& lock, std::shared_ptr<SharedFutureState> self) {
    if (continuation && hasResult()) {
        // No thread waits in get: get throws while a continuation is attached, and setContinuation
        // throws once get was called.
        runContinuation(lock, std::move(self));
        return;
    }
    lock.unlock();
    condition.notify_all();
}

/// REQUIRES: lock held, a continuation. Releases `lock`. The state may be gone on return.
template <typename T>
void SharedFutureState<T>::runContinuation(Lock& lock, std::shared_ptr<SharedFutureState> self) {
    const std::unique_ptr<FutureContinuation<T>> runNow = std::move(continuation);
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
    std::shared_ptr<SharedFutureState> keptAlive; // before the lock, so it is released after it
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
        result = makeAbandonedCell();
        status = FutureStatus::Exception;
    }
    announce(lock);
}

/// The exception of an abandoned promise; preallocated if there is no memory for a cell. It must
/// not fail, because destructors abandon.
template <typename T>
std::exception_ptr* SharedFutureState<T>::makeAbandonedCell() {
    try {
        return new std::exception_ptr(
            std::make_exception_ptr(std::runtime_error(errors::promiseAbandoned)));
    } catch (const std::bad_alloc&) {
        return preallocatedResults.abandoned();
    }
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
