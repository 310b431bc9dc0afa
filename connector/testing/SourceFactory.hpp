/// Creates and changes the sources that the conformance kit tests.
#pragma once

#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace connector::testing {

/// All values that the kit uses are of the std::string alternative. All keys consist of lower-case
/// letters and dots. So sources over files and the environment can be tested.
struct SourceFactory {
    using Source = configuration::ConfigurationSource;
    using OptionValue = configuration::OptionValue;
    using Table = std::unordered_map<std::string, OptionValue>;

    /// @return a new source with exactly these options
    std::function<std::shared_ptr<Source>(Table)> make;

    /// Changes one option where the source gets its options from; without a value, removes the
    /// option. Called from several threads concurrently. Returns once the change can be read and
    /// the watcher was called. Empty: the source never changes from outside.
    std::function<void(Source&, const std::string& key, const std::optional<OptionValue>& value)>
        change;

    /// Whether set stores values.
    bool writable = false;
};

} // namespace connector::testing
