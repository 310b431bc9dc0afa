/// Calling a function whenever an option changes.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/InvalidOption.hpp>
#include <connector/configuration/typed/OptionCast.hpp>
#include <connector/configuration/typed/detail/OptionFollower.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace connector::configuration {

/// Owns a watch, and ends it when destroyed. Each object belongs to one thread at a time.
///
/// Once the destructor has returned, the handler is not running and will not run: the destructor
/// waits for a call that is running on another thread. Inside a handler, the watch's own or any
/// other, it does not wait, and no new call begins. It takes the configuration's lock while the
/// configuration lives. Code that holds that lock by other means, such as the subscriber of a plain
/// stream during a set, must not destroy a watch whose handler may call the configuration on
/// another thread.
class CONNECTOR_EXPORT OptionWatch {
public:
    /// An empty watch.
    OptionWatch() noexcept;
    explicit OptionWatch(std::shared_ptr<detail::Follower> newFollower) noexcept;
    OptionWatch(OptionWatch&& other) noexcept;
    /// Ends the watch that was owned before.
    OptionWatch& operator=(OptionWatch&& other) noexcept;
    ~OptionWatch();

private:
    std::shared_ptr<detail::Follower> follower; // null for an empty watch
};

namespace detail {

/// @throws std::invalid_argument "An empty handler cannot be called."
CONNECTOR_EXPORT void demandHandler(bool isThere);

template <typename T>
class OptionHandler final : public OptionFollower {
public:
    using Handler = std::function<void(const T&)>;
    using InvalidHandler = std::function<void(const InvalidOption&)>;

    OptionHandler(const std::weak_ptr<Configuration>& newConfiguration, const std::string& newKey,
                  Handler&& newHandler, InvalidHandler&& newOnInvalid)
        : OptionFollower(newConfiguration, newKey), tellsInvalid(newOnInvalid != nullptr),
          handler(std::move(newHandler)), onInvalid(std::move(newOnInvalid)) {}

private:
    // An option that is not reported changes nothing here, so consecutive reports differ.
    bool take(Option&& option) override {
        std::optional<T> value = convertOrMove<T>(option.value);
        if (!value)
            return tellsInvalid && refuse(std::move(option), Conversion<T>::typeName());
        const bool wasRefused = accept();
        if (!wasRefused && newest && isKnownEqual(*newest, *value))
            return false;
        newest.emplace(*std::move(value));
        return true;
    }

    void tell() override {
        if (problem)
            onInvalid(InvalidOption(*problem));
        else
            handler(*newest);
    }

    void release() noexcept override {
        OptionFollower::release();
        handler = nullptr;
        onInvalid = nullptr;
    }

    const bool tellsInvalid;
    Handler handler;
    InvalidHandler onInvalid;
    std::optional<T> newest; // used by the running thread only
};

} // namespace detail

/// Calls the handler with the value of the option, at once if there is one, and after every change
/// that a stream of the option would report. The call for the present value comes on this thread,
/// the others on the thread that made the change; if set made the change, that thread holds the
/// configuration's lock. A handler must not wait for another thread that calls the configuration.
///
/// - Calls never overlap. Changes during a call are reported after it, once, with the newest value;
///   the set that made such a change may return before.
/// - Once all reported changes are complete, the last call had the value that getAs<T> returns.
///   That holds for nested and concurrent changes, too.
/// - The same value is not reported twice in a row, if T has ==.
/// - A handler may change options, and make and end watches, its own included.
/// - An exception thrown by a handler is reported, like that of every subscriber, by a line on
///   standard error: "Error in configuration value subscriber: KEY".
/// - The watch does not keep the configuration alive; once that is destroyed, there are no more
///   calls.
///
/// @param onInvalid  called instead for a value that does not convert, also at once, and not twice
///                   in a row for the same value of the same source
/// @return the watch; destroying it ends the calls
/// @throws std::invalid_argument "A null configuration cannot be followed."
///         "An empty handler cannot be called."
/// @throws what a source throws during the first lookup
template <typename T>
[[nodiscard]] OptionWatch onChange(const std::shared_ptr<Configuration>& configuration,
                                   const std::string& key, std::function<void(const T&)> handler,
                                   std::function<void(const InvalidOption&)> onInvalid = {}) {
    detail::demandHandler(handler != nullptr);
    return OptionWatch(detail::OptionFollower::follow<detail::OptionHandler<T>>(
        configuration, key, std::move(handler), std::move(onInvalid)));
}

} // namespace connector::configuration
