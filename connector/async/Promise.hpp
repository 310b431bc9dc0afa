/// The producer's side of a result that is not known yet when its future is returned.
#pragma once

#include <connector/async/Future.hpp>

#include <atomic>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

namespace connector {

/// Resolves one result, at most once. A promise that is destroyed before it has resolved its result
/// fails it with std::runtime_error "Promise destroyed before it provided a value.".
/// May be used from any thread; two threads must not move the same promise at once. A continuation
/// that a call runs may destroy the promise.
template <typename T>
class CONNECTOR_EXPORT Promise {
public:
    Promise() : state(std::make_shared<detail::SharedFutureState<T>>()), isValid(true) {}

    Promise(Promise&& other) noexcept
        : state(std::move(other.state)), isValid(other.isValid.exchange(false)) {}

    /// The result that this promise had is abandoned as by the destructor.
    Promise& operator=(Promise&& other) noexcept {
        if (this != &other) {
            // Abandoned last, because a continuation may destroy both promises.
            const Promise former(std::move(*this));
            state = std::move(other.state);
            isValid = other.isValid.exchange(false);
        }
        return *this;
    }

    /// Needs no memory. An exception that a continuation throws ends the program, as in every
    /// destructor.
    ~Promise() { abandon(); }

    /// Resolves the result with a value; see detail::SharedFutureState::setValue.
    /// @throws std::runtime_error "Promise state isn't valid!" when the promise was moved from
    void setValue(T value) { keepState()->setValue(std::move(value)); }

    /// Resolves the result with an exception; see detail::SharedFutureState::setException.
    /// @throws std::runtime_error "Promise state isn't valid!" when the promise was moved from
    void setException(std::exception_ptr exception) {
        keepState()->setException(std::move(exception));
    }

    /// @return the one future on the result; see detail::SharedFutureState::getFuture
    /// @throws std::runtime_error "Promise state isn't valid!" when the promise was moved from
    Future<T> getFuture() { return keepState()->getFuture(); }

private:
    // The copy keeps the state alive during the call, even if this promise is destroyed.
    std::shared_ptr<detail::SharedFutureState<T>> keepState() const {
        if (!isValid)
            throw std::runtime_error(detail::errors::promiseNotValid);
        return state;
    }

    // The exchange lets exactly one thread abandon the state.
    void abandon() noexcept {
        if (isValid.exchange(false))
            std::exchange(state, nullptr)->abandon();
    }

    std::shared_ptr<detail::SharedFutureState<T>> state;
    std::atomic<bool> isValid;
};

extern template class CONNECTOR_EXPORT Promise<bool>;

} // namespace connector
