/// The failure of a write whose expectation was not true.
#pragma once

#include <connector/etcd/Export.hpp>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace connector::etcd {

/// Nothing was written. The text is "Conflict: KEY is at revision ACTUAL, not EXPECTED"; the
/// revision of a key that does not exist is 0.
class CONNECTOR_ETCD_EXPORT Conflict : public std::runtime_error {
public:
    Conflict(const std::string& newKey, std::int64_t newExpected, std::int64_t newActual);
    ~Conflict() override;
    Conflict(const Conflict&) = default;
    Conflict& operator=(const Conflict&) = default;

    const std::string& key() const noexcept { return conflictingKey; }
    std::int64_t expected() const noexcept { return expectedRevision; }
    std::int64_t actual() const noexcept { return actualRevision; }

private:
    std::string conflictingKey;
    std::int64_t expectedRevision;
    std::int64_t actualRevision;
};

} // namespace connector::etcd
