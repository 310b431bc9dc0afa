/// How the conformance kit makes the sources that it tests.
#pragma once

#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace connector::testing {

/// All values that the kit uses are of the std::string alternative, all keys are small letters and
/// dots, so that sources over files and the environment can be tested.
struct SourceFactory {
    using Source = configuration::ConfigurationSource;
    using OptionValue = configuration::OptionValue;
    using Table = std::unordered_map<std::string, OptionValue>;

    /// @return a new source with exactly these options
    std::function<std::shared_ptr<Source>(Table)> make;

    /// Changes one option from outside, as whatever the source gets its options from would; without
    /// a value it removes the option. Called from several threads at a time. Returns when the
    /// change can be read and has been told. Empty: the source never changes from outside.
    std::function<void(Source&, const std::string& key, const std::optional<OptionValue>& value)>
        change;

    /// Whether set stores values.
    bool writable = false;
};

} // namespace connector::testing
