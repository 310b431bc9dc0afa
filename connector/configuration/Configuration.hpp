/// The interface to the options of an application: what value an option has, and which source
/// supplies it.
///
/// A configuration consults a prioritised set of named sources. Every source has an order (smaller
/// is consulted first; of equal orders, the one added last), a group (a prefix of all its keys) and
/// a read-only flag. The first source whose group fits a key and which has the key supplies the
/// value.
///
/// Keys, names and groups are 8-bit strings, compared byte by byte; paths are UTF-16.
///
/// All operations may be called from any thread. All answers are computed before the call returns,
/// so a returned future never waits. An expected failure (no such option, no writable source, a
/// name that is taken) is in the future. A failure of a source (a file that cannot be opened, an
/// exception from a source of the application's) is thrown from the call itself, and so is
/// std::bad_alloc.
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
#include <type_traits>
#include <unordered_map>

namespace connector::configuration {

/// What a program reads its options from, and writes them to. The order of the operations is part
/// of the binary interface.
class CONNECTOR_EXPORT Configuration {
    /// Nothing else than a pointer to characters: a literal 0 would convert to one, and is an int.
    template <typename Text>
    using TextPointer =
        std::enable_if_t<std::is_same_v<Text, const char*> || std::is_same_v<Text, char*> ||
                         std::is_same_v<Text, const char16_t*> || std::is_same_v<Text, char16_t*>>;

public:
    virtual ~Configuration();

    /// @return the effective value of the option; or std::runtime_error
    ///         "No option with the specified key was found: " + key
    virtual Future<OptionValue> get(const std::string& key) = 0;

    /// @return the effective value with the source that supplies it; or the failure of get
    virtual Future<Option> getOption(const std::string& key) = 0;

    /// Writes to the first writable source whose group fits the key, whether or not any source has
    /// the key. A read-only source that is consulted earlier can keep hiding the new value; that is
    /// intended. Subscribers of the key are notified before the call returns, on this thread. They
    /// may call the configuration, and may release the last pointer to it.
    /// @return what the source's own set returned (for a table in memory: the previous value, or
    ///         the new one where there was none); or std::runtime_error "No writable configuration
    ///         source for key: " + key
    virtual Future<OptionValue> set(const std::string& key, OptionValue value) = 0;

    /// Writes to the named source; otherwise as above.
    /// @return as above; or, when no source has that name, or it is read-only, or its group does
    ///         not fit, std::runtime_error "Source not found or not writable: " + key + ", " +
    ///         source
    virtual Future<OptionValue> set(const std::string& key, OptionValue value,
                                    const std::string& source) = 0;

    /// The same for string literals and const char*, which would otherwise be stored as the bool
    /// that a pointer converts to. The text is stored as 8-bit text, char16_t as UTF-16.
    /// @param text  ends with a NUL
    /// @throws std::invalid_argument "A null text cannot be stored."
    template <typename Text, typename = TextPointer<Text>>
    Future<OptionValue> set(const std::string& key, Text text) {
        return set(key, OptionValue(stored(text)));
    }
    template <typename Text, typename = TextPointer<Text>>
    Future<OptionValue> set(const std::string& key, Text text, const std::string& source) {
        return set(key, OptionValue(stored(text)), source);
    }

    /// @return whether some source has the option
    virtual Future<bool> has(const std::string& key) = 0;

    /// @return every key of every source, with the source's group in front
    virtual Future<std::set<std::string>> keys() = 0;

    /// Follows an option. The stream gets the effective value now, if there is one, after every
    /// change that a source reports, and when a source with that key is added or removed. Values
    /// are not compared: the same one may come again. Two changes are not published: that a key
    /// lost its last value, and the removal of a source with a group. While another thread adds or
    /// removes sources beside a set, an older value can arrive after a newer one.
    /// @return a new stream, which keeps the newest undelivered value. It ends when its subscriber
    ///         cancels, or when the last pointer to it is released; the configuration holds one.
    /// @throws std::bad_weak_ptr when no std::shared_ptr owns the configuration
    virtual std::shared_ptr<
        reactive_streams::CachedValuePublisher<OptionValue, std::function<void()>>>
    watchOption(const std::string& key) = 0;

    /// Adds the options of a property file, read now and never again.
    /// @param name      unique among the sources
    /// @param group     prefix of all keys of the source; a "." is appended unless it is empty or
    ///                  ends in one
    /// @param order     smaller is consulted first; of equal orders, the source that was added last
    /// @param readOnly  whether set skips the source. A property file cannot be written: if it is
    ///                  added as writable, a set that reaches it throws.
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

    /// Adds nothing. Deliberately, the process environment is not a source: otherwise the value of
    /// an option would depend on who started the process.
    /// @return false
    virtual Future<bool> addEnvironmentSource(const std::string& name, const std::string& group,
                                              int order) = 0;

    /// Removes a source. The built-in ones, "override" and "default", can be removed as well. The
    /// source keeps its watcher: a change that it reports later still notifies subscribers.
    /// @return whether there was a source with that name
    virtual Future<bool> removeSource(const std::string& name) = 0;

    /// @return this object
    /// @throws std::bad_weak_ptr when no std::shared_ptr owns it
    virtual std::shared_ptr<Configuration> getPtr() = 0;

private:
    static std::string stored(const char* text);
    static std::u16string stored(const char16_t* text);
};

} // namespace connector::configuration
