#include <connector/etcd/detail/Listing.hpp>

#include <connector/etcd/detail/Keys.hpp>
#include <connector/etcd/detail/Reading.hpp>
#include <connector/etcd/detail/ValueText.hpp>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

namespace connector::etcd::detail {

namespace {

/// A page costs the engine its keys and values at once, and a walk over the index of all the keys
/// that follow. Few large pages are fast, and small ones spare an engine that many clients read.
constexpr std::int64_t firstPage = 1'000;
constexpr std::int64_t largestPage = 10'000;
constexpr std::int64_t smallestPage = 10;
constexpr std::size_t bytesOfPage = 1u << 20;

} // namespace

Listing::Listing(const std::string& newPrefix)
    : prefix(newPrefix), end(endOfPrefix(newPrefix)), from(newPrefix), pageSize(firstPage) {
}

etcdserverpb::RangeRequest Listing::next() const {
    etcdserverpb::RangeRequest request;
    request.set_key(from);
    request.set_range_end(end);
    request.set_limit(pageSize);
    request.set_revision(revision);
    request.set_serializable(revision > 0); // a past revision is the same everywhere
    return request;
}

bool Listing::take(const etcdserverpb::RangeResponse& page) {
    const bool isFirst = revision == 0;
    if (page.header().revision() <= 0)
        throw std::runtime_error("nonsense: a list without a revision");
    if (!isFirst && page.header().cluster_id() != clusterId)
        throw std::runtime_error("the cluster changed during a list");
    if (page.more() && page.kvs().empty())
        throw std::runtime_error("nonsense: an empty page that is not the last one");
    if (isFirst) {
        revision = page.header().revision();
        clusterId = page.header().cluster_id();
    }
    for (const etcdserverpb::KeyValue& entry : page.kvs())
        takeEntry(entry);
    adaptPageSize(page);
    return !page.more();
}

void Listing::takeEntry(const etcdserverpb::KeyValue& entry) {
    ReadKey key = readKey(entry.key(), prefix);
    if (key.isOutside || entry.key() < from)
        throw std::runtime_error("nonsense: a list with a key that was not asked for");
    from = entry.key() + '\0'; // the key that follows
    if (key.isIgnored) {
        ++ignoredKeys;
        return;
    }
    if (entry.mod_revision() > witness.modRevision)
        witness = witnessOf(entry);
    if (auto value = readValue(entry.value()))
        table.emplace(std::move(key.local), *std::move(value));
    else
        unreadable.insert(std::move(key.local));
}

void Listing::adaptPageSize(const etcdserverpb::RangeResponse& page) {
    const std::size_t bytes = std::max<std::size_t>(page.ByteSizeLong(), 1);
    const auto fitting = static_cast<std::int64_t>(static_cast<double>(bytesOfPage) /
                                                   static_cast<double>(bytes) * page.kvs_size());
    pageSize = std::clamp(fitting, smallestPage, largestPage);
}

List Listing::result() {
    List list;
    list.table = std::move(table);
    list.known.revision = revision;
    list.known.clusterId = clusterId;
    list.known.witness = std::move(witness);
    list.known.unreadable = std::make_shared<const std::set<std::string>>(std::move(unreadable));
    return list;
}

} // namespace connector::etcd::detail
