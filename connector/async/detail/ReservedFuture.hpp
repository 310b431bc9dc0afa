/// A future whose memory is allocated before its value is known.
#pragma once

#include <connector/async/Future.hpp>

#include <memory>
#include <utility>

namespace connector::detail {

/// Allocates a ready future ahead of time.
///
/// An operation that changes something and returns the result of the change would allocate the
/// future last. If that failed, the caller would get std::bad_alloc from an operation that has
/// succeeded. Such an operation constructs a ReservedFuture before the change and resolves it
/// afterwards.
///
/// The future that resolve returns is like that of makeReadyFuture: same kind of state, same two
/// allocations, value not taken, no future retrieved.
/// @tparam T  default-constructible and move-assignable
template <typename T>
class ReservedFuture {
public:
    /// Allocates the cell of the result and the state.
    /// @throws std::bad_alloc, and what the default constructor of T throws
    ReservedFuture() : ReservedFuture(std::make_unique<T>()) {}

    ReservedFuture(const ReservedFuture&) = delete;
    ReservedFuture& operator=(const ReservedFuture&) = delete;

    /// Allocates nothing. REQUIRES: not called before.
    /// @return a future that is resolved with `value`
    /// @throws what the move assignment of T throws
    Future<T> resolve(T value) && {
        cell = std::move(value);
        return Future<T>(std::move(state));
    }

private:
    explicit ReservedFuture(std::unique_ptr<T> newCell)
        : cell(*newCell), state(std::make_shared<ReadyState<T>>(WithValue(), std::move(newCell))) {}

    T& cell; // owned by the state
    std::shared_ptr<SharedFutureState<T>> state;
};

} // namespace connector::detail
