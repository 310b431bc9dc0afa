/// The keys that have changed, on their way from the configuration to the network thread.
#pragma once

#include <connector/service/network/Signal.hpp>

#include <cstddef>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace connector::service {

/// Keeps each key once, however often it changes, and no more keys than `maxKeys`. Beyond that, and
/// when there is no memory, it only keeps that something has changed.
class ChangedKeys {
public:
    static constexpr std::size_t maxKeys = 10000;

    struct Keys {
        std::set<std::string> some;
        bool isEvery = false; ///< any key may have changed
    };

    /// @param newSignal  raised when there are keys
    explicit ChangedKeys(std::shared_ptr<const Signal> newSignal) : signal(std::move(newSignal)) {}

    /// May be called from any thread. The configuration calls it with its mutex held, so it only
    /// takes a mutex of its own and writes to a descriptor.
    void add(const std::string& key) noexcept;

    /// Any key may have changed.
    void addEvery() noexcept;

    /// @return the keys since the last call
    Keys take();

private:
    std::mutex mutex; // guards `keys`
    Keys keys;
    const std::shared_ptr<const Signal> signal;
};

} // namespace connector::service
