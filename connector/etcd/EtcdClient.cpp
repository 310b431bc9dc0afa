#include <connector/etcd/EtcdClient.hpp>

#include <connector/etcd/detail/Channel.hpp>
#include <connector/etcd/detail/Connection.hpp>
#include <connector/etcd/detail/Listing.hpp>
#include <connector/etcd/detail/Reading.hpp>
#include <connector/etcd/detail/Transaction.hpp>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace connector::etcd {

namespace {

using Clock = detail::Connection::Clock;

constexpr int mostLists = 3; // in a row, when the revision of a list is compacted meanwhile
constexpr std::chrono::milliseconds longestPause{250};
constexpr std::chrono::seconds leastTime{1}; // of an attempt whose timeout tells something

/// @return how many keys the operations of a transaction have erased
std::size_t erasedBy(const etcdserverpb::TxnResponse& answer) {
    std::int64_t erased = 0;
    for (const etcdserverpb::ResponseOp& operation : answer.responses())
        erased += operation.response_delete_range().deleted();
    return static_cast<std::size_t>(erased);
}

/// Reads a list page by page, with the revisions of the keys.
class ContentReader {
public:
    explicit ContentReader(const std::string& newPrefix) : prefix(newPrefix), listing(newPrefix) {}

    etcdserverpb::RangeRequest next() const { return listing.next(); }

    /// @return whether this was the last page
    bool take(const etcdserverpb::RangeResponse& page) {
        const bool isLast = listing.take(page);
        for (const etcdserverpb::KeyValue& entry : page.kvs()) {
            detail::ReadKey key = detail::readKey(entry.key(), prefix);
            if (!key.isIgnored)
                content.entries[std::move(key.local)].revision = entry.mod_revision();
        }
        return isLast;
    }

    Content result() {
        detail::List list = listing.result();
        content.revision = list.known.revision;
        content.clusterId = list.known.clusterId;
        for (auto& [key, value] : list.table)
            content.entries[key].value = std::move(value);
        return std::move(content);
    }

private:
    const std::string prefix;
    detail::Listing listing;
    Content content;
};

} // namespace

class EtcdClient::Impl {
public:
    explicit Impl(Options newOptions) : settings(detail::checked(std::move(newOptions))) {}

    Content read();
    Written apply(const std::vector<Change>& changes);

private:
    Clock::time_point deadline() const { return Clock::now() + settings.options.writeTimeout; }

    void connect(Clock::time_point deadline);
    bool tryEndpoints(Clock::time_point deadline);
    std::optional<Content> readOnce();
    bool take(const etcdserverpb::RangeResponse& page, ContentReader& reader) const;

    const detail::Settings settings;
    std::unique_ptr<detail::Connection> connection;
    std::string failure; // of the last attempt to connect that had enough time
};

/// Opens a connection that answers, unless there is one.
void EtcdClient::Impl::connect(Clock::time_point deadline) {
    if (connection && connection->greet(deadline).ok())
        return;
    failure.clear();
    auto pause = settings.options.timing.firstPause;
    while (!tryEndpoints(deadline)) {
        const auto next = Clock::now() + pause;
        if (next >= deadline)
            throw std::runtime_error(failure);
        std::this_thread::sleep_until(next);
        pause = std::min(2 * pause, longestPause);
    }
}

bool EtcdClient::Impl::tryEndpoints(Clock::time_point deadline) {
    for (const detail::Endpoint& endpoint : settings.endpoints) {
        const bool hasTime = Clock::now() + leastTime < deadline;
        connection = std::make_unique<detail::Connection>(settings.options, endpoint);
        const grpc::Status status = connection->greet(deadline);
        if (status.ok())
            return true;
        const bool isTimeout = status.error_code() == grpc::StatusCode::DEADLINE_EXCEEDED;
        if (hasTime || !isTimeout || failure.empty())
            failure = connection->describe(status);
        if (detail::isRefusal(status)) // another attempt would be refused, too
            throw std::runtime_error(failure);
    }
    return false;
}

Content EtcdClient::Impl::read() {
    for (int i = 0; i < mostLists; ++i) {
        connect(deadline());
        if (std::optional<Content> content = readOnce())
            return *std::move(content);
    }
    throw std::runtime_error(
        connection->describe("the list was compacted while it was read, several times"));
}

bool EtcdClient::Impl::take(const etcdserverpb::RangeResponse& page, ContentReader& reader) const {
    try {
        return reader.take(page);
    } catch (const std::runtime_error& nonsense) {
        throw std::runtime_error(connection->describe(nonsense.what()));
    }
}

/// @return nothing if the revision was compacted while it was read
std::optional<Content> EtcdClient::Impl::readOnce() {
    ContentReader reader(settings.options.prefix);
    for (bool isLast = false; !isLast;) {
        etcdserverpb::RangeResponse page;
        const grpc::Status status = connection->range(reader.next(), page, deadline());
        if (status.error_code() == grpc::StatusCode::OUT_OF_RANGE)
            return std::nullopt;
        if (!status.ok())
            throw std::runtime_error(connection->describe(status));
        isLast = take(page, reader);
    }
    return reader.result();
}

Written EtcdClient::Impl::apply(const std::vector<Change>& changes) {
    const etcdserverpb::TxnRequest request =
        detail::transactionOf(changes, settings.options.prefix);
    const Clock::time_point end = deadline();
    try {
        connect(end);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(std::string("Not written: ") + error.what());
    }
    etcdserverpb::TxnResponse answer;
    const grpc::Status status = connection->write(request, answer, end);
    if (detail::isRefusal(status))
        throw std::runtime_error("Not written: " + connection->describe(status));
    if (!status.ok())
        throw Unknown(connection->describe(status));
    if (!answer.succeeded())
        std::rethrow_exception(detail::conflictOf(request, answer, settings.options.prefix));
    return {answer.header().revision(), erasedBy(answer)};
}

EtcdClient::EtcdClient(Options options) : impl(std::make_unique<Impl>(std::move(options))) {
}

EtcdClient::~EtcdClient() = default;

Content EtcdClient::read() {
    return impl->read();
}

Written EtcdClient::apply(const std::vector<Change>& changes) {
    return impl->apply(changes);
}

} // namespace connector::etcd
