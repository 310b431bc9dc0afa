/// The handle through which a result is read, and the functions that make resolved futures.
#pragma once

#include <connector/async/SharedFutureState.hpp>

#include <atomic>
#include <exception>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

/// CONNECTOR_EXPORT together with [[nodiscard]]: GCC 12 accepts the two only as one attribute list.
#define CONNECTOR_NODISCARD_EXPORT [[nodiscard, gnu::visibility("default")]]

namespace connector {

/// A handle on a result of type T that exists already or will exist. Handles are moved, not copied.
/// A handle may be used from any thread; two threads must not move the same handle at once.
/// Functions report their failures through futures. A dropped future hides them, so the compiler
/// warns about it.
template <typename T>
class CONNECTOR_NODISCARD_EXPORT Future {
public:
    /// A future without a state: not valid.
    Future() = default;

    /// A future on `newState`; valid exactly when that is not null.
    explicit Future(std::shared_ptr<detail::SharedFutureState<T>> newState)
        : state(std::move(newState)), isValid(state != nullptr) {}

    Future(Future&& other) noexcept
        : state(std::move(other.state)), isValid(other.isValid.exchange(false)) {}

    Future& operator=(Future&& other) noexcept {
        if (this != &other) {
            state = std::move(other.state);
            isValid = other.isValid.exchange(false);
        }
        return *this;
    }

    // Relaxed: to see the store, a thread would have to use a destroyed handle.
    ~Future() { isValid.store(false, std::memory_order_relaxed); }

    /// Waits for the result, without a time limit, and takes it. The handle stays valid; a second
    /// call throws. See detail::SharedFutureState::get for every outcome.
    /// @throws std::runtime_error "Future state isn't valid!" when the handle was
    ///         default-constructed, moved from or constructed from a null state
    T get() { return validState()->get(); }

    /// @return whether the handle refers to a result
    bool valid() const { return isValid; }

    /// Attaches a continuation: runs `callable` with a valid future on the result when the result
    /// is resolved, on the thread that resolves it. If it is resolved already, `callable` runs on
    /// this thread before then returns. If it is cancelled, `callable` never runs.
    ///
    /// What get on this handle does afterwards:
    /// - before the result is resolved, or if it is cancelled, get throws std::runtime_error
    ///   "Future already returned it's value or has an associated continuation.";
    /// - once the result is resolved, the first caller of get takes it: `callable`, through its
    ///   future, or a caller of get on this handle. For the other one get throws the same
    ///   exception. A result that `callable` does not take stays available to this handle.
    /// @param callable  called at most once, with Future<T>&. What it throws leaves the call that
    ///         resolves the result, or then itself if the result is resolved already.
    /// @throws std::runtime_error "Future state isn't valid!" as get does
    /// @throws std::runtime_error "Future already returned it's value or has an associated
    ///         continuation." when get was called before or another continuation is attached
    template <typename Callable>
    void then(Callable&& callable);

private:
    const std::shared_ptr<detail::SharedFutureState<T>>& validState() const {
        if (!isValid)
            throw std::runtime_error(detail::errors::futureNotValid);
        return state;
    }

    // The copy keeps the state alive during the call even if this handle is destroyed.
    std::shared_ptr<detail::SharedFutureState<T>> keepState() const { return validState(); }

    std::shared_ptr<detail::SharedFutureState<T>> state;
    std::atomic<bool> isValid{false};
};

namespace detail {

template <typename T, typename Callable>
class CallableContinuation final : public FutureContinuation<T> {
public:
    template <typename Source>
    explicit CallableContinuation(Source&& source) : callable(std::forward<Source>(source)) {}

    void invoke(Future<T>& future) override { callable(future); }

private:
    Callable callable;
};

} // namespace detail

template <typename T>
template <typename Callable>
void Future<T>::then(Callable&& callable) {
    using Continuation = detail::CallableContinuation<T, std::decay_t<Callable>>;
    const auto kept = keepState();
    kept->setContinuation(std::make_unique<Continuation>(std::forward<Callable>(callable)), kept);
}

namespace detail {

struct SecondBase {};

/// A state that is constructed with its result and has no weak pointer to itself. Only a reader
/// that waits needs one. std::make_shared sets it if there is one base class
/// std::enable_shared_from_this; with two, the name is ambiguous and it sets neither
/// ([util.smartptr.shared.const]). To make and read a future of int takes a seventh less time
/// without it.
template <typename T>
class ReadyState final : public SharedFutureState<T>,
                         public std::enable_shared_from_this<SecondBase> {
public:
    using SharedFutureState<T>::SharedFutureState;
};

/// As makeReadyFuture, for a value that is in a cell of its own already.
/// @param value  not null
template <typename T>
Future<T> makeFutureOfCell(std::unique_ptr<T> value) {
    return Future<T>(std::make_shared<ReadyState<T>>(WithValue(), std::move(value)));
}

} // namespace detail

/// @return a future that is resolved with `value` already
template <typename T>
Future<T> makeReadyFuture(T value) {
    return detail::makeFutureOfCell(std::make_unique<T>(std::move(value)));
}

/// @return a future that has failed with a copy of `exception` already; get throws an exception of
///         type `Exception`
template <typename T, typename Exception>
Future<T> makeFailedFuture(const Exception& exception) {
    return Future<T>(std::make_shared<detail::ReadyState<T>>(detail::WithException(),
                                                             std::make_exception_ptr(exception)));
}

// Instantiated in the library. Those for the types of the core are declared beside these types.
extern template class CONNECTOR_EXPORT detail::SharedFutureState<bool>;
extern template class CONNECTOR_EXPORT Future<bool>;
extern template class CONNECTOR_EXPORT detail::SharedFutureState<std::set<std::string>>;
extern template class CONNECTOR_EXPORT Future<std::set<std::string>>;

} // namespace connector

#undef CONNECTOR_NODISCARD_EXPORT
