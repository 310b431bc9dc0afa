#include <connector/etcd/detail/Tables.hpp>

#include <algorithm>
#include <mutex>
#include <utility>

namespace connector::etcd::detail {

using sources::Table;

std::vector<std::string> differingKeys(const Table& table, const KeyValues& changes) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : changes) {
        const auto entry = table.find(key);
        const bool wasThere = entry != table.end();
        const bool isSame = wasThere ? value && entry->second == *value : !value;
        if (!isSame)
            keys.push_back(key);
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

void applyTo(Table& table, const KeyValues& changes) {
    for (const auto& [key, value] : changes) {
        if (value)
            table.insert_or_assign(key, *value);
        else
            table.erase(key);
    }
}

/// Keeps one table. Tables are destroyed without the lock.
class Tables::Shelf {
public:
    /// From now on, this table is kept when it is released; null: none is.
    void want(const Table* table) { const auto unwanted = exchange(nullptr, table); }

    void release(std::unique_ptr<Table> table) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (table.get() == wanted)
            kept.swap(table);
    } // the parameter is destroyed after the lock

    std::unique_ptr<Table> take() { return exchange(nullptr, nullptr); }

private:
    std::unique_ptr<Table> exchange(std::unique_ptr<Table> newKept, const Table* newWanted) {
        const std::lock_guard<std::mutex> lock(mutex);
        wanted = newWanted;
        return std::exchange(kept, std::move(newKept));
    }

    std::mutex mutex;
    const Table* wanted = nullptr;
    std::unique_ptr<Table> kept;
};

Tables::Tables() : shelf(std::make_shared<Shelf>()) {
}

Tables::~Tables() {
    trim();
}

Tables::Snapshot Tables::next(const Snapshot& present, KeyValues changes) {
    const bool isOurs = present.get() == latest;
    std::unique_ptr<Table> table = shelf->take();
    if (isOurs && table)
        applyTo(*table, latestChanges);
    else
        table = std::make_unique<Table>(*present);
    applyTo(*table, changes);
    shelf->want(isOurs ? present.get() : nullptr);
    latest = table.get();
    latestChanges = std::move(changes);
    return Snapshot(table.release(), [shelf = shelf](const Table* released) {
        // It was made above, not const.
        shelf->release(std::unique_ptr<Table>(const_cast<Table*>(released)));
    });
}

void Tables::trim() {
    shelf->want(nullptr);
}

} // namespace connector::etcd::detail
