/// The present value of an option, which threads can read fast.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/InvalidOption.hpp>
#include <connector/configuration/typed/OptionCast.hpp>
#include <connector/configuration/typed/detail/OptionFollower.hpp>
#include <connector/configuration/typed/detail/ValueCell.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace connector::configuration {

namespace detail {

/// @throws InvalidOption when there is a problem, or else the core's failure for a missing option
[[noreturn]] CONNECTOR_EXPORT void throwNoFirstValue(const std::optional<InvalidOption>& problem,
                                                     const std::string& key);

template <typename T>
class LiveValue final : public OptionFollower {
public:
    LiveValue(const std::weak_ptr<Configuration>& newConfiguration, const std::string& newKey,
              std::optional<T>&& fallback)
        : OptionFollower(newConfiguration, newKey) {
        if (fallback)
            cell.store(*std::move(fallback));
    }

    std::optional<InvalidOption> currentProblem() const {
        const std::lock_guard<std::mutex> lock(problemMutex);
        return shownProblem;
    }

    // On a cache line of their own: the other writes of the writer must not slow readers down.
    alignas(64) ValueCell<T> cell;
    std::atomic<std::uint64_t> version{0}; // raised after the cell is filled

private:
    bool take(Option&& option) override {
        std::optional<T> value = convertOrMove<T>(option.value);
        if (!value) {
            if (refuse(std::move(option), Conversion<T>::typeName()))
                show(problem);
            return false;
        }
        if (version == 0 || !isKnownEqual(static_cast<const T&>(cell.get()), *value)) {
            cell.store(*std::move(value));
            version.fetch_add(1, std::memory_order_release);
        }
        if (accept())
            show(std::nullopt);
        return false; // there is no listener
    }

    void tell() override {}

    void show(const std::optional<InvalidOption>& newProblem) {
        const std::lock_guard<std::mutex> lock(problemMutex);
        shownProblem = newProblem;
    }

    mutable std::mutex problemMutex; // guards:
    std::optional<InvalidOption> shownProblem;
};

} // namespace detail

/// Follows an option, on the threads that change it, and keeps its newest good value. Once all
/// changes that a stream of the option would report are complete, get returns what getAs<T>
/// returns.
///
/// All operations may be called from any thread, take no lock of the configuration and call nothing
/// back. Copies share the value. It does not keep the configuration alive; once that is destroyed,
/// the last value stays.
template <typename T>
class LiveOption {
public:
    /// Takes the configuration's lock.
    /// @throws std::runtime_error "No option with the specified key was found: " + key
    /// @throws InvalidOption when the option's value does not convert
    /// @throws std::invalid_argument "A null configuration cannot be followed."
    /// @throws what a source throws during the first lookup
    LiveOption(const std::shared_ptr<Configuration>& configuration, const std::string& key)
        : value(follow(configuration, key, std::nullopt)) {
        if (value->version == 0)
            detail::throwNoFirstValue(value->currentProblem(), key);
    }

    /// As above, but the fallback is used for a missing option, and for a first value that does not
    /// convert; in the second case there is a problem().
    LiveOption(const std::shared_ptr<Configuration>& configuration, const std::string& key,
               T fallback)
        : value(follow(configuration, key, std::move(fallback))) {}

    LiveOption(const LiveOption&) = default; // and no moves: there is no empty state
    LiveOption& operator=(const LiveOption&) = default;

    /// @return a copy of the value; for a T of up to 8 trivially copyable bytes one atomic load
    T get() const { return value->cell.get(); }

    /// @return a snapshot of the value, which does not change
    std::shared_ptr<const T> snapshot() const { return value->cell.snapshot(); }

    /// @return how many values were taken from the configuration; 0 while the fallback is used. A
    ///         get after it returns that value, or a newer one.
    std::uint64_t version() const { return value->version.load(std::memory_order_acquire); }

    /// @return why the newest value was not taken; empty when it was
    std::optional<InvalidOption> problem() const { return value->currentProblem(); }

private:
    using LiveValue = detail::LiveValue<T>;

    static std::shared_ptr<const LiveValue>
    follow(const std::shared_ptr<Configuration>& configuration, const std::string& key,
           std::optional<T> fallback) {
        return detail::OptionFollower::follow<LiveValue>(configuration, key, std::move(fallback));
    }

    std::shared_ptr<const LiveValue> value;
};

} // namespace connector::configuration
