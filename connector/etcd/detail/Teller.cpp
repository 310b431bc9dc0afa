#include <connector/etcd/detail/Teller.hpp>

#include <stdexcept>
#include <utility>

namespace connector::etcd::detail {

Teller::Teller(std::optional<CacheFile> newCache, std::chrono::milliseconds newDelay,
               Known newKnown)
    : cache(std::move(newCache)), delay(newDelay), revisionInFile(newKnown.revision),
      known(std::move(newKnown)) {
    if (known.revision > 0)
        board.told(known);
}

void Teller::silence() {
    watcher.set({});
    statusHandler.set({});
    errorHandler.set({});
}

void Teller::begin(std::shared_ptr<Publication> newPublication,
                   std::shared_ptr<const sources::Table> table) {
    publication = std::move(newPublication);
    present = std::move(table);
}

void Teller::run() {
    for (bool isLast = false; !isLast;) {
        Mail mail = mailbox.take(cacheDue);
        isLast = mail.isLast;
        guarded([&] { handle(std::move(mail)); });
        writeCacheIfDue(isLast);
        reportStatus();
    }
}

void Teller::reportStatusAgain() {
    isReportWanted = true;
    mailbox.ring();
}

/// Results of writes come first: a slow watcher does not delay them.
void Teller::handle(Mail mail) {
    for (std::function<void()>& task : mail.tasks)
        guarded(std::exchange(task, nullptr));
    if (mail.known)
        tell(mail);
    if (mail.ready > 0)
        board.caughtUp(mail.ready);
}

void Teller::tell(Mail& mail) {
    known = *mail.known;
    if (mail.list || !mail.changes.empty()) {
        const Replacement replacement = publication->replace(nextTable(mail));
        present = replacement.present;
        callWatcher(replacement);
    }
    board.told(known);
    if (cache && !cacheDue)
        cacheDue = Clock::now() + delay;
}

sources::Table Teller::nextTable(Mail& mail) const {
    sources::Table table = mail.list ? std::move(*mail.list) : *present;
    for (const std::string& key : mail.kept) {
        if (const auto entry = present->find(key); entry != present->end())
            table.emplace(*entry);
    }
    for (auto& [key, value] : mail.changes) {
        if (value)
            table.insert_or_assign(key, *std::move(value));
        else
            table.erase(key);
    }
    return table;
}

void Teller::callWatcher(const Replacement& replacement) {
    for (const std::string& key : replacement.keys) {
        if (const auto current = watcher.get())
            guarded([&] { (*current)(key); });
    }
}

void Teller::reportStatus() {
    const std::uint64_t version = board.version();
    const bool isWanted = isReportWanted.exchange(false) || version != reportedVersion;
    const auto handler = statusHandler.get();
    if (!isWanted)
        return;
    reportedVersion = version;
    if (handler)
        guarded([&] { (*handler)(board.status()); });
}

void Teller::writeCacheIfDue(bool isLast) {
    const bool isDue = cacheDue && (isLast || *cacheDue <= Clock::now());
    if (!isDue)
        return;
    cacheDue.reset();
    if (known.revision == revisionInFile)
        return;
    try {
        cache->write(*present, known);
        revisionInFile = known.revision;
    } catch (const std::runtime_error& error) {
        board.failed(error.what());
    }
}

/// What an application's function throws must not end the thread.
template <typename Action>
void Teller::guarded(Action action) {
    try {
        action();
    } catch (...) {
        const auto handler = errorHandler.get();
        if (!handler)
            return;
        try {
            (*handler)(std::current_exception());
        } catch (...) { // as documented
        }
    }
}

} // namespace connector::etcd::detail
