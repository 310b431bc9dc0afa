/// Reads the options of a snapshot.
#pragma once

#include "commands/OptionReader.hpp"
#include "comparing/SnapshotFile.hpp"

namespace connector_config {

/// Reads a configuration whose sources are those of a snapshot. A masked value is shown, but it is
/// a failure to ask for the value itself, so that no script takes the mask for it.
class SnapshotOptions : public OptionReader {
public:
    /// @param newConfiguration  must outlive this object, as the snapshot
    SnapshotOptions(connector::configuration::ConfigurationImpl& newConfiguration,
                    const Snapshot& newSnapshot)
        : local(newConfiguration), snapshot(newSnapshot) {}

    /// @throws std::runtime_error "Value is masked in the snapshot: " + key
    OptionValue value(const std::string& key) override;
    /// The failure of a masked value is the same text.
    std::vector<Answer> answers(const std::vector<std::string>& keys) override;

    std::vector<std::string> keys(const std::string& prefix) override { return local.keys(prefix); }
    std::vector<Option> options(const std::string& prefix) override {
        return local.options(prefix);
    }
    std::vector<SourceAnswer> explain(const std::string& key) override {
        return local.explain(key);
    }

private:
    bool isMaskedIn(const std::string& key);

    LocalOptions local;
    const Snapshot& snapshot;
};

/// @throws std::runtime_error "Masked values cannot be served: KEY in SOURCE" if a value is masked
void checkNothingIsMasked(const Snapshot& snapshot);

} // namespace connector_config
