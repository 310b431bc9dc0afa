/// How the telling thread replaces the table of a source.
#pragma once

#include <connector/sources/TableChange.hpp>

#include <memory>
#include <string>
#include <vector>

namespace connector::etcd::detail {

/// What a replacement has changed. The former table is kept until the watcher was called.
struct Replacement {
    std::vector<std::string> keys; ///< in ascending order
    std::shared_ptr<const sources::Table> present;
    std::shared_ptr<const sources::Table> former;
};

/// The source; it may be gone.
class Publication {
public:
    virtual ~Publication() = default;

    /// Replaces the table; calls nothing.
    virtual Replacement replace(sources::Table table) = 0;

    /// The same when the differences are known.
    /// @return the former table
    virtual std::shared_ptr<const sources::Table>
    publish(std::shared_ptr<const sources::Table> table) = 0;
};

} // namespace connector::etcd::detail
