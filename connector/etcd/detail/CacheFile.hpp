/// The file from which a source begins when the engine is away.
#pragma once

#include <connector/etcd/detail/Known.hpp>
#include <connector/sources/TableChange.hpp>

#include <filesystem>
#include <optional>
#include <string>

namespace connector::etcd::detail {

/// What the file holds: a table and where it stands in the history of the engine.
struct Cached {
    sources::Table table;
    Known known;
};

/// A file with a checksum. It is written beside and renamed, so a reader never sees half of it, and
/// its mode is 0600. Used by one thread at a time.
class CacheFile {
public:
    /// @param newPrefix  of the keys: a file of another prefix is not read
    CacheFile(std::filesystem::path newPath, std::string newPrefix);

    /// @return nothing if there is no file
    /// @throws std::runtime_error "PATH: CAUSE" if it cannot be read, is damaged, or belongs to
    ///         another prefix
    std::optional<Cached> read() const;

    /// @throws std::runtime_error "PATH: CAUSE"; the former file stays
    void write(const sources::Table& table, const Known& known) const;

private:
    const std::filesystem::path path;
    const std::string prefix;
};

} // namespace connector::etcd::detail
