/// Shows from inside a callback whether the calling thread holds a configuration's mutex.
#pragma once

#include "support/ObservedThread.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace test {

/// Looks an option up on another thread. Must outlive the operation whose callback it probes,
/// because the lookup returns only after the mutex is released.
class MutexProbe {
public:
    /// @param newConfiguration  outlives the probe
    explicit MutexProbe(connector::configuration::ConfigurationImpl& newConfiguration)
        : configuration(newConfiguration) {}

    /// @return whether another thread has to wait for the mutex. May be called once.
    bool isHeld() {
        lookup = std::make_unique<ObservedThread>([this] { configuration.has("some key").get(); });
        return lookup->blocksOn(configuration);
    }

private:
    connector::configuration::ConfigurationImpl& configuration;
    std::unique_ptr<ObservedThread> lookup;
};

/// Expects that no operation left the mutex locked. A probe of a mutex that stays locked cannot be
/// joined, so the program ends.
/// @return true
inline bool mutexIsFree(connector::configuration::ConfigurationImpl& configuration) {
    MutexProbe probe(configuration);
    if (probe.isHeld()) {
        std::fputs("the mutex of the configuration was left locked\n", stderr);
        std::abort();
    }
    return true;
}

} // namespace test
