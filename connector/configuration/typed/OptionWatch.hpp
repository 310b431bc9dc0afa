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

/// Owns a watch, and ends it when it goes. Each object belongs to one thread at a time.
///
/// When the destructor has returned, the handler neither runs nor will run: it waits for a call
/// that is running on another thread. Inside a handler, the watch's own or any other, it does not
/// wait, and no new call begins. It takes the configuration's lock while the configuration lives.
/// Whoever holds that lock in another way, as the subscriber of a plain stream does during a set,
/// must not destroy a watch whose handler may call the configuration on another thread.
class CONNECTOR_EXPORT OptionWatch {
public:
    /// A watch of nothing.
    OptionWatch() noexcept;
    explicit OptionWatch(std::shared_ptr<detail::Follower> newFollower) noexcept;
    OptionWatch(OptionWatch&& other) noexcept;
    /// Ends the watch that was owned before.
    OptionWatch& operator=(OptionWatch&& other) noexcept;
    ~OptionWatch();

private:
    std::shared_ptr<detail::Follower> follower; // null for a watch of nothing
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
    // What is not told changes nothing here, so that what is told differs from what was told
    // before it.
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
    std::optional<T> newest; // touched by the thread that runs only
};

} // namespace detail

/// Calls the handler with the value of the option, at once if there is one, and after every change
/// that a stream of the option would tell. The calls come on the thread that made the change, and
/// on this one for the first; while it holds the configuration's lock, if set made the change. A
/// handler must not wait for another thread that calls the configuration.
///
/// - Calls never overlap. A change during a call is told afterwards, once, with the newest value;
///   the set that made it may return before.
/// - When all changes that are told are over, the last call had what getAs<T> answers. That holds
///   for nested and concurrent changes, too.
/// - The same value is not told twice in a row, where T has ==.
/// - A handler may change options, and make and end watches, its own included.
/// - What a handler throws is reported, like that of every subscriber, by a line on standard error:
///   "Error in configuration value subscriber: KEY".
/// - The watch does not keep the configuration alive; when it is gone, nothing is called any more.
///
/// @param onInvalid  called instead for a value that does not convert, at once, too, and not twice
///                   in a row for the same value of the same source
/// @return what ends the watch
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
