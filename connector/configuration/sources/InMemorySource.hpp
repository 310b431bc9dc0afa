/// A writable table in memory.
#pragma once

#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <memory>
#include <unordered_map>

namespace connector::configuration {

namespace detail {
class OwnTable;
} // namespace detail

/// Holds values of every type. Has no lock: see ConfigurationSource.
class CONNECTOR_EXPORT InMemorySource : public ConfigurationSource,
                                        public std::enable_shared_from_this<InMemorySource> {
public:
    /// @param initialValues  moved from: empty afterwards
    explicit InMemorySource(std::unordered_map<std::string, OptionValue>&& initialValues);
    ~InMemorySource() override;

    /// @return a copy of the value
    /// @throws std::out_of_range "unordered_map::at: key not found"
    OptionValue get(const std::string& key) override;

    /// Stores the value, then calls the watcher: always, even if the value is the same as before.
    /// @throws what the watcher throws; the value is stored then
    /// @return the previous value, or a copy of the new one if the key is new. The asymmetry is
    ///         deliberate: callers of Configuration::set see it, and rely on it.
    OptionValue set(const std::string& key, OptionValue value) override;

    /// Removes an entry, then calls the watcher; does nothing when there is none.
    /// @return whether there was one
    bool erase(const std::string& key);

    bool has(const std::string& key) override;

    /// Replaces the watcher; an empty one switches notification off.
    void setWatcher(Watcher newWatcher) override;

    std::set<std::string> keys() override;

private:
    friend class detail::OwnTable;

    std::unordered_map<std::string, OptionValue> values;
    Watcher watcher;
};

} // namespace connector::configuration
