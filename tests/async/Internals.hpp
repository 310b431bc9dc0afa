/// The private fields that the tests of futures and publishers read or write.
#pragma once

#include <connector/async/CachedValuePublisher.hpp>

#include <cstdint>
#include <exception>

namespace test {

using State = connector::detail::SharedFutureState<int>;
using IntPublisher = connector::reactive_streams::CachedValuePublisher<int>;

/// Writes the status only, as foreign code might: stores no result and wakes no thread.
void setStatus(State& state, connector::detail::FutureStatus status);

/// @return whether a thread waits in get, which sets valueTaken and starts to wait under one lock
bool isWaitedFor(State& state);

/// Writes the state only: calls nothing.
void setState(IntPublisher& publisher, connector::reactive_streams::PublisherState state);

/// Writes the error that a late subscriber of a stream in the state Errored gets.
void setError(IntPublisher& publisher, std::exception_ptr error);

std::uint64_t demandOf(IntPublisher& publisher);

} // namespace test
