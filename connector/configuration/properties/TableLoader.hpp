/// Fills a table with the properties of a file, at the speed of memory.
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

/// Stores properties several at once, and makes the table as large as the file will need it. Only for
/// a table that nobody looks at meanwhile: what was added is there after flush, and not before.
class TableLoader {
public:
    /// @param newFile      is asked how much of the file has been read
    /// @param newFileSize  how much there is to read, or about; 0 or less when that is not known
    TableLoader(OptionMap& newTable, const StreamCursor& newFile, std::streamoff newFileSize);

    /// Keeps a property until the next flush, which may be at once.
    void add(std::string_view key, std::string_view value);

    /// Stores what was added since the last flush, in that order: the last of equal keys wins.
    void flush();

    /// Stores the rest and, if the file was not what its beginning promised, returns memory.
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
