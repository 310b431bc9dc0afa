/// The configuration: a registry of sources, the lookups that walk it, and the streams that follow
/// options.
///
/// The rules of precedence are in registry/Precedence.hpp. ConfigurationImpl.cpp reads and writes
/// options, ConfigurationImplSources.cpp adds and removes sources, ConfigurationImplWatching.cpp
/// follows options, ConfigurationImplPlanning.cpp looks at all sources and at planned changes.
///
/// Threads and locks. Every operation except addEnvironmentSource and getPtr takes `mutex`. Lock
/// order: `mutex` first, then the mutex of a publisher or of a future's state, never the reverse.
/// The mutex is recursive because a source calls its watcher from inside its set, which runs under
/// the mutex, and the watcher takes it again.
///
/// Lifetime. A subscriber may release the last pointer to the configuration while set, addSource or
/// removeSource notifies it: the object lives until the call returns.
#pragma once

#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/SourceAnswer.hpp>
#include <connector/configuration/SourceSnapshot.hpp>
#include <connector/configuration/planning/Change.hpp>
#include <connector/configuration/planning/Plan.hpp>
#include <connector/configuration/registry/ConfigurationSourceMap.hpp>
#include <connector/configuration/sources/ConfigurationSource.hpp>
#include <connector/configuration/watching/OptionStreams.hpp>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace connector::configuration {

namespace detail {
class LookupScope;
struct Supplier;
} // namespace detail

/// The implementation of Configuration. Must be owned by a std::shared_ptr. An object on the stack
/// works too, but then watchOption and getPtr throw std::bad_weak_ptr, and a source that outlives
/// it must not call its watcher.
class CONNECTOR_EXPORT ConfigurationImpl : public Configuration,
                                           public std::enable_shared_from_this<Configuration> {
public:
    using OptionPublisher = detail::OptionPublisher;
    using KeyListener = std::function<void(const std::string& key)>;

    /// Registers the built-in sources, both writable tables in memory without a group: "override",
    /// with order 0, and "default", with order 2147483647.
    ConfigurationImpl();

    /// Takes the mutex and removes the watchers of the registered sources, in their order. Sources
    /// that were removed before keep theirs.
    ~ConfigurationImpl() override;

    ConfigurationImpl(const ConfigurationImpl&) = delete;
    ConfigurationImpl& operator=(const ConfigurationImpl&) = delete;

    Future<OptionValue> get(const std::string& key) override;
    Future<Option> getOption(const std::string& key) override;
    using Configuration::set; // the overloads for text
    Future<OptionValue> set(const std::string& key, OptionValue value) override;
    Future<OptionValue> set(const std::string& key, OptionValue value,
                            const std::string& source) override;
    Future<bool> has(const std::string& key) override;
    Future<std::set<std::string>> keys() override;
    std::shared_ptr<OptionPublisher> watchOption(const std::string& key) override;
    Future<bool> addPropertyFileSource(const std::string& name, const std::string& group, int order,
                                       bool readOnly, const std::u16string& path) override;
    Future<bool> addInMemorySource(const std::string& name, const std::string& group, int order,
                                   bool readOnly,
                                   std::unordered_map<std::string, OptionValue>&& values) override;
    Future<bool> addEnvironmentSource(const std::string& name, const std::string& group,
                                      int order) override;
    Future<bool> removeSource(const std::string& name) override;
    std::shared_ptr<Configuration> getPtr() override;

    /// Registers any source; addPropertyFileSource and addInMemorySource call it. Subscribers of
    /// the source's keys get the effective value again, even where another source supplies it.
    /// Every change that the source reports from now on is published.
    /// @return true; or std::invalid_argument
    ///         "Source with the requested name already exists: " + name
    /// @throws std::bad_typeid when the source is null; nothing is registered then
    /// @throws what the source's keys, has, get and setWatcher throw; the source stays registered
    Future<bool> addSource(const std::string& name, const std::string& group, int order,
                           bool readOnly, std::shared_ptr<ConfigurationSource> source);

    /// Queries every source for a key. The first answer with a value is the effective one.
    /// @return an answer for each source, in the order of consultation, including those whose group
    ///         does not fit
    /// @throws what the sources throw
    std::vector<SourceAnswer> explain(const std::string& key);

    /// @return the options whose keys begin with the bytes of the prefix, sorted by key, each with
    ///         its effective value and the name of the source that supplies it, all as of one
    ///         moment
    /// @throws what a source's keys, has and get throw
    std::vector<Option> optionsBelow(const std::string& prefix);

    /// @return the options of the listed keys that exist, in the order of the list, each with its
    ///         effective value and the name of the source that supplies it, all as of one moment
    /// @throws what a source's has and get throw
    std::vector<Option> optionsOf(const std::vector<std::string>& keys);

    /// Copies all sources. Calls no watcher and logs nothing. May be called from any thread; takes
    /// the mutex, as keys does, while it reads the sources.
    /// @return the sources in the order of consultation, with all their entries, all as of one
    ///         moment. Secret values are not masked.
    /// @throws what a source's keys, has and get throw
    std::vector<SourceSnapshot> snapshot();

    /// Tells what a change would do, and changes nothing: reads the sources, but calls no set and
    /// no watcher, and logs nothing. May be called from any thread; takes the mutex while it reads
    /// the sources that the change concerns, which takes about as long as a list of their options.
    ///
    /// A source of the application is assumed to store what set writes to it, and to report it.
    /// @return the options with another effective value, type or source, and the values that stay
    ///         hidden; empty when the change would have no effect
    /// @throws what the change itself would fail with: std::runtime_error "No writable
    ///         configuration source for key: " + key, "Source not found or not writable: " + key +
    ///         ", " + source, "PropertyFileSource does not support writing"; std::invalid_argument
    ///         "Source with the requested name already exists: " + name; std::bad_typeid for a
    ///         source that is null
    /// @throws std::runtime_error "No source with that name: " + name, for RemoveSource and
    ///         ReplaceTables
    /// @throws what a source's keys, has and get throw
    planning::Plan plan(planning::Change change);

    /// Removes an entry from the in-memory table that set would write to. Watchers of the key are
    /// notified of the value that is effective now, before the call returns. They are not notified
    /// when no source has a value, or when there was no entry.
    /// @return whether there was an entry; or, when set would have no source, or one that is not
    ///         in memory, std::runtime_error "No writable configuration source for key: " + key
    Future<bool> reset(const std::string& key);

    /// As above, in the named source.
    /// @return whether there was an entry; or, when no source has that name, or it is read-only or
    ///         not in memory, or its group does not fit, std::runtime_error "Source not found or
    ///         not writable: " + key + ", " + source
    Future<bool> reset(const std::string& key, const std::string& source);

    /// Calls a function with every key that may have another effective value from now on: with each
    /// key whose streams are updated, whether or not it has streams. The key may have no value, as
    /// after reset. The function is called with the mutex held, on the thread that makes the
    /// change. It must not throw, nor call the configuration.
    /// @return the registration: the function is called until the last pointer to it is released.
    ///         It may be released on any thread, also when the configuration is gone; a call that
    ///         has begun on another thread is not waited for.
    [[nodiscard]] std::shared_ptr<const KeyListener> listen(KeyListener listener);

    /// Removes the stream with that id from the list. Its publisher lives on while other owners
    /// hold it. An unknown id is ignored.
    void removeStream(std::uint64_t id);

private:
    using Lock = std::unique_lock<std::recursive_mutex>;
    using ConfigurationSourceMap = detail::ConfigurationSourceMap;

    // The lock argument of these functions proves that the caller holds `mutex`.
    bool doHas(Lock& lock, const std::string& key);
    OptionValue doGet(Lock& lock, const std::string& key);
    Option doGetOption(Lock& lock, const std::string& key);

    /// A source that supplies a value, and the key to query it with. Independent of the registry.
    struct Question;
    Question questionFor(const std::string& key, const char* failure);

    bool mayReadDirectly(const detail::Supplier& supplier) const;
    bool lookupsAreUnobservable() const;
    std::optional<OptionValue> effectiveValue(Lock& lock, const std::string& key);

    std::optional<Option> effectiveOption(Lock& lock, const std::string& key);
    std::set<std::string> keysBelow(const std::string& prefix, detail::LookupScope& lookup);
    static Future<bool> erase(const ConfigurationSourceMap* target, const std::string& key,
                              const std::string& failure);

    static Future<OptionValue> write(const ConfigurationSourceMap& target, const std::string& key,
                                     OptionValue&& value);

    void offerFirst(std::uint64_t id, OptionPublisher& publisher, const OptionValue& value);

    /// @return the function that a source calls with its own key when that key changes
    ConfigurationSource::Watcher watcherFor(const std::string& group);

    void notifyListeners(const std::string& key);
    bool keysAreNeeded() const;
    void updateAll(Lock& lock, const std::string& group, const std::set<std::string>& keys);

    /// Offers the key's effective value, if it has one, to its streams. Releases the lock
    /// meanwhile, so that subscribers may call back. REQUIRES: lock held, on entry and on return;
    /// the caller keeps this object alive, since a subscriber may release it.
    void updatePublishers(Lock& lock, const std::string& key);

    std::recursive_mutex mutex;                 // guards everything below; see the lock order above
    std::atomic<std::uint64_t> nextStreamId{0}; // advanced under the mutex only
    [[maybe_unused]] bool reserved = false;     // keeps the object's shape; has no meaning
    detail::SourceRecords sources;              // in the order of consultation
    std::string localKeyBuffer;                 // of findSupplier
    detail::OptionStreams streams;              // destroyed before the sources
    std::vector<std::weak_ptr<const KeyListener>> listeners;
};

} // namespace connector::configuration
