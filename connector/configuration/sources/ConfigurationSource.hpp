/// One table of options that a configuration consults.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <functional>
#include <set>
#include <string>

namespace connector::configuration {

/// A source knows nothing of priorities, groups or other sources. It sees source-local keys, that is
/// without the group under which it is registered, and answers for its own table.
///
/// A source needs no lock: the configuration calls it under its own mutex only. Code that keeps a
/// pointer to a source and calls it directly serialises those calls itself. While a source is asked
/// (get, has, keys), it must not change the registry of the configuration that asks.
///
/// The order of the operations is part of the binary interface.
class CONNECTOR_EXPORT ConfigurationSource {
public:
    using Watcher = std::function<void(const std::string&)>;

    virtual ~ConfigurationSource();

    /// Called only after has answered true for the key, under the same hold of the lock.
    /// @return the value of the key; a source may throw for a key that it does not have
    virtual OptionValue get(const std::string& key) = 0;

    /// Called only on sources that are registered as writable. Calls the watcher, synchronously, if
    /// the value of the key changes.
    /// @return whatever the caller of Configuration::set is to receive
    virtual OptionValue set(const std::string& key, OptionValue value) = 0;

    /// @return whether the source has the key
    virtual bool has(const std::string& key) = 0;

    /// Called when the source is registered, and with an empty function when the configuration is
    /// destroyed. The source calls the current watcher with the key of every value that changes, on
    /// the thread that made the change.
    virtual void setWatcher(Watcher watcher) = 0;

    /// @return all keys
    virtual std::set<std::string> keys() = 0;
};

} // namespace connector::configuration
