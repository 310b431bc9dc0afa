/// What value has this option, and who says so?
///
/// A configuration asks a prioritised set of named sources. Every source has an order (smaller is
/// consulted first; among equals, the one added last), a group (a prefix of all its keys) and a
/// read-only flag. The first source whose group fits a key and which has the key supplies the value.
///
/// Keys, names and groups are 8-bit strings, compared byte by byte; paths are UTF-16.
///
/// All operations may be called from any thread. All answers are computed before the call returns,
/// so a returned future never waits. A failure that belongs to the question (no such option, no
/// writable source, a name taken) is in the future; a failure of a source (a file that cannot be
/// opened, an exception from a source of the application's) is thrown from the call itself.
#pragma once

#include <connector/Export.hpp>
#include <connector/async/CachedValuePublisher.hpp>
#include <connector/async/Future.hpp>
#include <connector/configuration/Option.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>

namespace connector::configuration {

/// The order of the operations is part of the binary interface.
class CONNECTOR_EXPORT Configuration {
public:
    virtual ~Configuration();

    /// @return the effective value of the option; or std::runtime_error
    ///         "No option with the specified key was found: " + key
    virtual Future<OptionValue> get(const std::string& key) = 0;

    /// @return the effective value with the source that supplies it; or the failure of get
    virtual Future<Option> getOption(const std::string& key) = 0;

    /// Writes to the first writable source whose group fits the key, whether or not any source has
    /// the key. A read-only source that is consulted earlier can keep hiding the new value; that is
    /// intended. Watchers of the key are notified before the call returns.
    /// @return what the source's own set returned (for a table in memory: the previous value, or the
    ///         new one where there was none); or std::runtime_error
    ///         "No writable configuration source for key: " + key
    virtual Future<OptionValue> set(const std::string& key, OptionValue value) = 0;

    /// Writes to the named source. Watchers of the key are notified before the call returns.
    /// @return as above; or, when no source has that name, or it is read-only, or its group does not
    ///         fit, std::runtime_error "Source not found or not writable: " + key + ", " + source
    virtual Future<OptionValue> set(const std::string& key, OptionValue value,
                                    const std::string& source) = 0;

    /// @return whether some source has the option
    virtual Future<bool> has(const std::string& key) = 0;

    /// @return every key of every source, with the source's group in front
    virtual Future<std::set<std::string>> keys() = 0;

    /// Follows an option: its effective value now, if it has one, and after every change that a
    /// source reports, and whenever a source with that key is added or a source is removed. Values
    /// are not compared: the same one may come again. That a key lost its last value is not told,
    /// nor the removal of a source that has a group, to watchers of its prefixed keys. While another
    /// thread adds or removes sources beside a set, an older value can arrive after a newer one.
    /// @return a new stream of its own, with room for one undelivered value. It ends when its
    ///         subscriber cancels or the last pointer to it goes; the configuration holds one.
    /// @throws std::bad_weak_ptr when no std::shared_ptr owns the configuration
    virtual std::shared_ptr<
        reactive_streams::CachedValuePublisher<OptionValue, std::function<void()>>>
    watchOption(const std::string& key) = 0;

    /// Adds the options of a property file, read now and never again.
    /// @param name      unique among the sources
    /// @param group     prefix of all keys of the source; a "." is put between them if it has none
    /// @param order     smaller is consulted first; a newcomer goes before its equals
    /// @param readOnly  whether set passes the source by. A property file takes no writes: one that
    ///                  is added as writable makes set throw.
    /// @param path      of the file, UTF-16
    /// @return true; or std::invalid_argument
    ///         "Source with the requested name already exists: " + name
    /// @throws std::runtime_error "Property file could not be opened: " + path in UTF-8; nothing is
    ///         added then
    virtual Future<bool> addPropertyFileSource(const std::string& name, const std::string& group,
                                               int order, bool readOnly,
                                               const std::u16string& path) = 0;

    /// Adds a table in memory. Arguments and failure as for addPropertyFileSource.
    /// @param values  moved from
    virtual Future<bool>
    addInMemorySource(const std::string& name, const std::string& group, int order, bool readOnly,
                      std::unordered_map<std::string, OptionValue>&& values) = 0;

    /// Adds nothing: the process environment is deliberately no source, for then what an option is
    /// would depend on who started the process.
    /// @return false
    virtual Future<bool> addEnvironmentSource(const std::string& name, const std::string& group,
                                              int order) = 0;

    /// Removes a source; the built-in ones, "override" and "default", have no protection.
    /// Whoever shares the source must not change it any more once the configuration is gone: its
    /// watcher stays installed.
    /// @return whether there was a source with that name
    virtual Future<bool> removeSource(const std::string& name) = 0;

    /// @return this object
    /// @throws std::bad_weak_ptr when no std::shared_ptr owns it
    virtual std::shared_ptr<Configuration> getPtr() = 0;
};

} // namespace connector::configuration
