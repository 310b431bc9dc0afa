#include <connector/etcd/detail/Mailbox.hpp>

#include <utility>

namespace connector::etcd::detail {

/// A key whose newest value cannot be read keeps the last good one: of the pending changes, of the
/// pending list, or of the table that the reader has.
void Mail::keepLastGood(const std::string& key, sources::Table& table,
                        std::set<std::string>& keptNow) const {
    if (const auto change = changes.find(key); change != changes.end()) {
        if (change->second)
            table.emplace(key, *change->second);
        return;
    }
    if (!list || kept.count(key) > 0) {
        keptNow.insert(key);
        return;
    }
    if (const auto entry = list->find(key); entry != list->end())
        table.emplace(key, entry->second);
}

void Mail::add(List&& newer) {
    std::set<std::string> keptNow;
    for (const std::string& key : *newer.known.unreadable)
        keepLastGood(key, newer.table, keptNow);
    list = std::move(newer.table);
    kept = std::move(keptNow);
    changes.clear();
    known = std::move(newer.known);
}

void Mail::add(Changes&& newer) {
    for (KeyChange& change : newer.keys) {
        if (change.kind == KeyChange::Kind::Put)
            changes.insert_or_assign(std::move(change.key), std::move(change.value));
        else if (change.kind == KeyChange::Kind::Erased)
            changes.insert_or_assign(std::move(change.key), std::nullopt);
        // An unreadable value keeps what was there before.
    }
    known = std::move(newer.known);
}

template <typename Action>
void Mailbox::change(Action action) {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        action();
        isRung = true;
    }
    rung.notify_one();
}

void Mailbox::post(List&& list) {
    change([&] { mail.add(std::move(list)); });
}

void Mailbox::post(Changes&& changes) {
    change([&] { mail.add(std::move(changes)); });
}

void Mailbox::post(std::function<void()> task) {
    change([&] { mail.tasks.push_back(std::move(task)); });
}

void Mailbox::postReady(std::uint64_t number) {
    change([&] { mail.ready = number; });
}

void Mailbox::ring() {
    change([] {});
}

void Mailbox::close() {
    change([&] { mail.isLast = true; });
}

Mail Mailbox::take(std::optional<Clock::time_point> until) {
    std::unique_lock<std::mutex> lock(mutex);
    const auto isReady = [this] { return isRung; };
    if (until)
        rung.wait_until(lock, *until, isReady);
    else
        rung.wait(lock, isReady);
    isRung = false;
    const bool isLast = mail.isLast;
    Mail taken = std::exchange(mail, Mail());
    mail.isLast = isLast;
    return taken;
}

} // namespace connector::etcd::detail
