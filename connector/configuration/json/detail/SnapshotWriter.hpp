/// Writes snapshots.
#pragma once

#include <connector/configuration/json/Snapshot.hpp>

#include <string>
#include <vector>

namespace connector::configuration::detail {

class SnapshotWriter {
public:
    /// @param newIsSecret  may be empty; must outlive this object
    explicit SnapshotWriter(const SecretFilter& newIsSecret) : isSecret(newIsSecret) {}

    /// @throws as writeSnapshot
    std::string document(const std::vector<SourceSnapshot>& sources) const;

private:
    std::string source(const SourceSnapshot& source) const;
    std::string entry(const SourceSnapshot& source, const std::string& key,
                      const SnapshotEntry& entry) const;

    const SecretFilter& isSecret;
};

} // namespace connector::configuration::detail
