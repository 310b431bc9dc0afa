/// The options of a property file. docs/property-files.md describes the format.
#pragma once

#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <istream>
#include <memory>
#include <unordered_map>

namespace connector::configuration {

namespace detail {
class OwnTable;
} // namespace detail

/// Reads a property file once, when it is made, and answers from memory afterwards. All values are
/// of the std::string alternative, byte for byte as they stand in the file. Refuses every write.
/// Has no lock: see ConfigurationSource.
class CONNECTOR_EXPORT PropertyFileSource
    : public ConfigurationSource,
      public std::enable_shared_from_this<PropertyFileSource> {
public:
    /// Opens, reads and closes the file. No content is an error. When reading fails in the middle,
    /// the options that were read so far are kept.
    /// @param path  UTF-16
    /// @throws std::runtime_error "Property file could not be opened: " followed by the path in
    ///         UTF-8; "Text is not valid UTF-16" for a path that is not valid UTF-16
    explicit PropertyFileSource(const std::u16string& path);
    ~PropertyFileSource() override;

    /// Adds the properties of a stream of 8-bit text to the table, replacing what has the same key,
    /// and calls the watcher, if one is set, after each. Reads to the end of the stream, or until
    /// it fails, and leaves the stream's state as reading character by character with get does.
    /// @throws what the watcher throws, what a log sink throws, and what the stream throws where
    ///         its exceptions are switched on; the properties before stay stored
    void parseStream(std::istream& stream);

    /// @return a copy of the value
    /// @throws std::out_of_range "unordered_map::at: key not found"
    OptionValue get(const std::string& key) override;

    /// @throws std::runtime_error "PropertyFileSource does not support writing", always
    OptionValue set(const std::string& key, OptionValue value) override;

    bool has(const std::string& key) override;

    /// Replaces the watcher. Nothing changes after construction unless parseStream is called.
    void setWatcher(Watcher newWatcher) override;

    std::set<std::string> keys() override;

private:
    friend class detail::OwnTable;

    void load(std::istream& file);
    void store(const std::string& key, const std::string& value, bool atEndOfInput);

    std::unordered_map<std::string, OptionValue> options;
    Watcher watcher;
};

} // namespace connector::configuration
