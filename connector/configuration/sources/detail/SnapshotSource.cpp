#include <connector/configuration/sources/detail/SnapshotSource.hpp>

#include <connector/configuration/detail/OptionMap.hpp>
#include <connector/configuration/sources/detail/LookupScope.hpp>

#include <utility>

namespace connector::configuration::detail {

SnapshotSource::SnapshotSource(Table&& initial)
    : table(std::make_shared<const Table>(std::move(initial))), address(table.get()) {
}

SnapshotSource::~SnapshotSource() = default;

OptionValue SnapshotSource::get(const std::string& key) {
    return at(*tableOfLookup(), key);
}

bool SnapshotSource::has(const std::string& key) {
    return tableOfLookup()->count(key) != 0;
}

std::set<std::string> SnapshotSource::keys() {
    return keysOf(*tableOfLookup());
}

SnapshotSource::Snapshot SnapshotSource::newest() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return table;
}

SnapshotSource::Snapshot SnapshotSource::exchange(Snapshot newTable) {
    const std::lock_guard<std::mutex> lock(mutex);
    address.store(newTable.get(), std::memory_order_release);
    return std::exchange(table, std::move(newTable));
}

SnapshotSource::Snapshot SnapshotSource::tableOfLookup() const {
    LookupScope* const lookup = LookupScope::current();
    return lookup == nullptr ? newest() : lookup->tableOf(*this);
}

} // namespace connector::configuration::detail
