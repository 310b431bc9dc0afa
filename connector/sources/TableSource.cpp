#include <connector/sources/TableSource.hpp>

#include <connector/sources/detail/Difference.hpp>

#include <exception>
#include <stdexcept>
#include <utility>

namespace connector::sources {

using configuration::OptionValue;

TableSource::TableSource(Table initial) : SnapshotSource(std::move(initial)) {
}

TableSource::~TableSource() = default;

TableChange TableSource::replace(Table table) {
    Exchange exchanged = exchangeTable(std::move(table));
    tell(exchanged.change);
    return std::move(exchanged.change);
}

std::shared_ptr<const Table> TableSource::table() const {
    return newest();
}

OptionValue TableSource::set(const std::string&, OptionValue) {
    throw std::runtime_error("Source does not support writing");
}

void TableSource::setWatcher(Watcher newWatcher) {
    auto next = newWatcher ? std::make_shared<const Watcher>(std::move(newWatcher)) : nullptr;
    const std::lock_guard<std::mutex> lock(watcherMutex);
    watcher.swap(next); // destroys the old one after unlocking: its destructor may lock again
}

/// Changes nothing if it throws: the difference is computed before the table is replaced.
TableSource::Exchange TableSource::exchangeTable(Table table) {
    auto next = std::make_shared<const Table>(std::move(table));
    const std::lock_guard<std::mutex> lock(replacing);
    Exchange result{{}, newest()};
    result.change = detail::differenceOf(*result.previous, *next);
    exchange(std::move(next));
    return result;
}

void TableSource::tell(const TableChange& change) {
    std::exception_ptr first;
    for (const std::string* const key : detail::keysInOrder(change)) {
        const std::shared_ptr<const Watcher> current = currentWatcher();
        if (current == nullptr)
            continue;
        try {
            (*current)(*key);
        } catch (...) {
            if (!first)
                first = std::current_exception();
        }
    }
    if (first)
        std::rethrow_exception(first);
}

std::shared_ptr<const TableSource::Watcher> TableSource::currentWatcher() const {
    const std::lock_guard<std::mutex> lock(watcherMutex);
    return watcher;
}

} // namespace connector::sources
