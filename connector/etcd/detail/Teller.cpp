#include <connector/etcd/detail/Teller.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace connector::etcd::detail {

namespace {

/// How long memory is kept for changes that follow each other.
constexpr std::chrono::seconds trimDelay{2};

} // namespace

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
        Mail mail = mailbox.take(due());
        isLast = mail.isLast;
        guarded([&] { handle(std::move(mail)); });
        writeCacheIfDue(isLast);
        trimIfDue();
        reportStatus();
    }
}

std::optional<Teller::Clock::time_point> Teller::due() const {
    return cacheDue && trimDue ? std::min(cacheDue, trimDue) : cacheDue ? cacheDue : trimDue;
}

void Teller::trimIfDue() {
    if (!trimDue || *trimDue > Clock::now())
        return;
    trimDue.reset();
    tables.trim();
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
        const Replacement replacement = mail.list ? replaceList(mail) : replaceTable(mail);
        present = replacement.present;
        callWatcher(replacement);
    }
    board.told(known);
    if (cache && !cacheDue)
        cacheDue = Clock::now() + delay;
}

/// A value that is written again is no change.
Replacement Teller::replaceTable(Mail& mail) {
    std::vector<std::string> keys = differingKeys(*present, mail.changes);
    if (keys.empty())
        return {{}, present, nullptr};
    std::shared_ptr<const sources::Table> next = tables.next(present, std::move(mail.changes));
    trimDue = Clock::now() + trimDelay;
    std::shared_ptr<const sources::Table> former = publication->publish(next);
    return {std::move(keys), std::move(next), std::move(former)};
}

Replacement Teller::replaceList(Mail& mail) {
    sources::Table table = std::move(*mail.list);
    for (const std::string& key : mail.kept) {
        if (const auto entry = present->find(key); entry != present->end())
            table.emplace(*entry);
    }
    applyTo(table, mail.changes);
    return publication->replace(std::move(table));
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
