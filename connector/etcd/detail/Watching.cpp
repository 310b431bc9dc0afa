#include <connector/etcd/detail/Watching.hpp>

#include <connector/etcd/detail/Keys.hpp>
#include <connector/etcd/detail/Reading.hpp>
#include <connector/etcd/detail/ValueText.hpp>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

namespace connector::etcd::detail {

Watching::Watching(const std::string& newPrefix, Known newKnown)
    : prefix(newPrefix), present(std::move(newKnown)) {
}

etcdserverpb::WatchRequest Watching::begin() const {
    etcdserverpb::WatchRequest request;
    etcdserverpb::WatchCreateRequest& create = *request.mutable_create_request();
    create.set_key(prefix);
    create.set_range_end(endOfPrefix(prefix));
    create.set_start_revision(present.revision + 1);
    create.set_progress_notify(true);
    create.set_fragment(true);
    return request;
}

Watching::News Watching::take(const etcdserverpb::WatchResponse& message) {
    if (message.header().cluster_id() != present.clusterId)
        throw std::runtime_error("the cluster changed during a watch");
    if (message.compact_revision() > 0)
        return News::Compacted;
    if (message.canceled())
        throw std::runtime_error("the watch was refused: " + message.cancel_reason());
    if (message.created())
        return News::Began;
    // The answer to a request for progress belongs to no watch. It may overtake changes, so its
    // revision says nothing.
    if (message.watch_id() < 0)
        return News::None;
    return takeEvents(message);
}

Watching::News Watching::takeEvents(const etcdserverpb::WatchResponse& message) {
    for (const etcdserverpb::Event& event : message.events())
        takeEvent(event);
    if (message.fragment())
        return News::None;
    // A message without changes says that there are none up to its revision.
    const std::int64_t reached = message.events().empty() ? message.header().revision() : newest;
    if (reached <= present.revision)
        return News::None;
    present.revision = reached;
    return News::Changed;
}

void Watching::takeEvent(const etcdserverpb::Event& event) {
    const etcdserverpb::KeyValue& entry = event.kv();
    if (entry.mod_revision() <= present.revision)
        return; // already known
    if (entry.mod_revision() < newest)
        throw std::runtime_error("nonsense: a change of an earlier revision after a later one");
    newest = entry.mod_revision();
    ReadKey key = readKey(entry.key(), prefix);
    if (key.isOutside)
        throw std::runtime_error("nonsense: a change of a key that is not watched");
    if (key.isIgnored) {
        ++ignored;
        return;
    }
    noteWitness(event);
    KeyChange change{std::move(key.local), KeyChange::Kind::Erased, std::nullopt};
    if (event.type() == etcdserverpb::Event::PUT) {
        change.value = readValue(entry.value());
        change.kind = change.value ? KeyChange::Kind::Put : KeyChange::Kind::Unreadable;
    }
    noteUnreadable(change.key, change.kind == KeyChange::Kind::Unreadable);
    changes.push_back(std::move(change));
}

/// The set is shared with the telling thread, so it is copied when it changes.
void Watching::noteUnreadable(const std::string& key, bool isUnreadable) {
    if ((present.unreadable->count(key) > 0) == isUnreadable)
        return;
    auto next = std::make_shared<std::set<std::string>>(*present.unreadable);
    if (isUnreadable)
        next->insert(key);
    else
        next->erase(key);
    present.unreadable = std::move(next);
}

void Watching::noteWitness(const etcdserverpb::Event& event) {
    if (event.type() == etcdserverpb::Event::PUT)
        present.witness = witnessOf(event.kv());
    else if (event.kv().key() == present.witness.key && present.witness.at == 0)
        present.witness.at = event.kv().mod_revision() - 1;
}

Changes Watching::takeChanges() {
    newest = 0;
    return {std::exchange(changes, {}), present};
}

std::uint64_t Watching::takeIgnored() {
    return std::exchange(ignored, 0);
}

} // namespace connector::etcd::detail
