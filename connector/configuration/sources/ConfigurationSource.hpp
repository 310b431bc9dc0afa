/// One table of options that a configuration consults.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <functional>
#include <set>
#include <string>

namespace connector::configuration {

/// The interface of all sources. A source knows nothing of priorities, groups or other sources. It
/// sees source-local keys, which are the keys without the group of its registration, and answers
/// for its own table.
///
/// Threads. A source needs no lock: the configuration calls it under its own mutex only. Other code
/// must not call a registered source directly, with two exceptions: before it is registered, and
/// from inside a call that the configuration makes into a source (a `set` of the source, a
/// watcher). A source that changes on its own, on another thread, needs a lock of its own, which it
/// must not hold while it calls the watcher.
///
/// Registration. A source has one watcher. Registered a second time, in the same configuration or
/// in another one, it reports to the last registration only.
///
/// While a source is asked (get, has), it must not change the registry of the configuration that
/// asks.
///
/// The order of the operations is part of the binary interface.
class CONNECTOR_EXPORT ConfigurationSource {
public:
    using Watcher = std::function<void(const std::string&)>;

    virtual ~ConfigurationSource();

    /// Called only after has returned true for the key, while the configuration still holds its
    /// lock. If another thread can remove the key in between, return the value that has found:
    /// docs/writing-a-source.md has an example. An exception would make the lookup fail, although
    /// a later source may have the option.
    /// @return the value of the key
    /// @throws std::out_of_range for a key that the source does not have
    virtual OptionValue get(const std::string& key) = 0;

    /// Called only on sources that are registered as writable. Calls the watcher, synchronously, if
    /// the value of the key changes.
    /// @return whatever the caller of Configuration::set is to receive
    virtual OptionValue set(const std::string& key, OptionValue value) = 0;

    /// @return whether the source has the key
    virtual bool has(const std::string& key) = 0;

    /// Replaces the watcher. Called when the source is registered, and with an empty function when
    /// the configuration is destroyed. The source calls the current watcher with the key of each
    /// value that changes, on the thread that made the change. A watcher that is called after its
    /// configuration was destroyed does nothing, if a std::shared_ptr owned the configuration.
    virtual void setWatcher(Watcher watcher) = 0;

    /// @return all keys
    virtual std::set<std::string> keys() = 0;
};

} // namespace connector::configuration
