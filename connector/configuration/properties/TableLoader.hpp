/// Fills a table with the properties of a file.
#pragma once

#include <connector/configuration/detail/OptionMap.hpp>

#include <cstddef>
#include <ios>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace connector::configuration::detail {

class StreamCursor;

/// Stores properties in batches, and sizes the table for the whole file ahead. Only for a table
/// that nothing else reads meanwhile: a property is in the table after flush.
class TableLoader {
public:
    /// @param newFile      tells how much of the file has been read
    /// @param newFileSize  in bytes, an estimate; 0 or less when it is unknown
    TableLoader(OptionMap& newTable, const StreamCursor& newFile, std::streamoff newFileSize);

    /// Adds a property to the batch, and flushes a batch that is full.
    void add(std::string_view key, std::string_view value);

    /// Stores the batch in the order in which it was added: the last of equal keys wins.
    void flush();

    /// Stores the last batch and, if the file had fewer properties than expected, frees memory.
    void finish();

private:
    using Property = std::pair<std::string, std::string>;

    void makeRoom();
    std::size_t expectedEntries(std::size_t seen) const;
    void touchBuckets() const;

    OptionMap& table;
    const StreamCursor& file;
    const std::streamoff fileSize;
    std::vector<Property> pending; ///< at most a batch
};

} // namespace connector::configuration::detail
