/// The private fields that the tests of results and streams look at or set.
#pragma once

#include <connector/async/CachedValuePublisher.hpp>

#include <cstdint>
#include <exception>

namespace test {

using State = connector::detail::SharedFutureState<int>;
using IntPublisher = connector::reactive_streams::CachedValuePublisher<int>;

/// Writes the status alone, as foreign code might: no result, and nobody is woken.
void setStatus(State& state, connector::detail::FutureStatus status);

/// Whether a thread sleeps in get. (get marks the value as taken and goes to sleep under one lock.)
bool isWaitedFor(State& state);

/// Writes the state alone: nobody is called.
void setState(IntPublisher& publisher, connector::reactive_streams::PublisherState state);

/// What a stream in the state Errored hands to a late subscriber.
void setError(IntPublisher& publisher, std::exception_ptr error);

std::uint64_t demandOf(IntPublisher& publisher);

} // namespace test
