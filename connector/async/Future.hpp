/// The handle through which a result is read, and the factories of results that are known already.
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

namespace connector {

/// A handle on a result of type T that is there already or will be. Handles are moved, not copied.
/// A handle may be used from any thread; two threads must not move the same handle at once.
template <typename T>
class CONNECTOR_EXPORT Future {
public:
    /// A future of nothing: not valid.
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

    // Relaxed: whoever would see more of it would use a handle that is gone.
    ~Future() { isValid.store(false, std::memory_order_relaxed); }

    /// Waits for the result, without a time limit, and takes it. The handle stays valid, but there
    /// is nothing left to take: see detail::SharedFutureState::get for every outcome.
    /// @throws std::runtime_error "Future state isn't valid!" when the handle was default-made,
    ///         moved from or made from a null state
    T get() { return validState()->get(); }

    /// @return whether the handle refers to a result
    bool valid() const { return isValid; }

    /// Runs `callable` with a valid future on the result, once it is there: on the thread that
    /// resolves it, or here and now when it is resolved already. Afterwards the result is the
    /// callable's to take; get on this handle throws. See detail::SharedFutureState::setContinuation
    /// for the failures; without a state, std::runtime_error "Future state isn't valid!".
    /// @param callable  called once with Future<T>&; what it throws goes to whoever resolves
    template <typename Callable>
    void then(Callable&& callable);

private:
    const std::shared_ptr<detail::SharedFutureState<T>>& validState() const {
        if (!isValid)
            throw std::runtime_error(detail::errors::futureNotValid);
        return state;
    }

    // The copy keeps the state alive during the call, whatever happens to this handle.
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

struct Nobody {};

/// A state that is born with its result and does not know itself: it needs no weak reference to itself,
/// which is for those who wait. std::make_shared sets one where there is one base class
/// std::enable_shared_from_this, and where there are two it takes neither
/// ([util.smartptr.shared.const]). An int is made and taken in a seventh less time without it.
template <typename T>
class ReadyState final : public SharedFutureState<T>, public std::enable_shared_from_this<Nobody> {
public:
    using SharedFutureState<T>::SharedFutureState;
};

/// As makeReadyFuture, for those who have the value in a cell of its own already.
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

/// @return a future that has failed with a copy of `exception` already: get throws it, with the type
///         that it has here
template <typename T, typename Exception>
Future<T> makeFailedFuture(const Exception& exception) {
    return Future<T>(std::make_shared<detail::ReadyState<T>>(detail::WithException(),
                                                             std::make_exception_ptr(exception)));
}

// Instantiated in the library. The types of the core join where they are declared.
extern template class CONNECTOR_EXPORT detail::SharedFutureState<bool>;
extern template class CONNECTOR_EXPORT Future<bool>;
extern template class CONNECTOR_EXPORT detail::SharedFutureState<std::set<std::string>>;
extern template class CONNECTOR_EXPORT Future<std::set<std::string>>;

} // namespace connector
