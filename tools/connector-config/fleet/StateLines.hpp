/// Tells on standard error whether a source over etcd follows its engine.
#pragma once

#include <connector/etcd/Status.hpp>

#include <chrono>
#include <optional>
#include <string>

namespace connector_config {

/// Makes a line of each state that the user has to know:
///     NAME: stale since HH:MM:SS: CAUSE
///     NAME: current at revision R
/// The first time that the source is current is not told: that is how it should be. Used by one
/// thread at a time.
class StateLines {
public:
    /// @param newName  of the source
    explicit StateLines(std::string newName) : name(std::move(newName)) {}

    /// @param status  the present one; may be the same as before
    /// @return the line without a line break; nothing if there is nothing to tell
    std::optional<std::string> next(const connector::etcd::Status& status);

private:
    using State = connector::etcd::State;

    const std::string name;
    State state = State::Starting; // of the last status, as the following one
    std::chrono::system_clock::time_point since;
    bool wasCurrent = false;
};

} // namespace connector_config
