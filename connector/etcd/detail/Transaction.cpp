#include <connector/etcd/detail/Transaction.hpp>

#include <connector/etcd/Conflict.hpp>
#include <connector/etcd/detail/Keys.hpp>
#include <connector/etcd/detail/ValueText.hpp>

#include <set>
#include <stdexcept>

namespace connector::etcd::detail {

namespace {

constexpr std::size_t mostChanges = 128; // the engine's own limit, unless it is configured

void checkKeys(const std::vector<Change>& changes) {
    if (changes.empty())
        throw std::invalid_argument("There is no change");
    if (changes.size() > mostChanges)
        throw std::invalid_argument("A transaction has at most " + std::to_string(mostChanges) +
                                    " changes, not " + std::to_string(changes.size()));
    std::set<std::string> seen;
    for (const Change& change : changes) {
        if (change.key.empty())
            throw std::invalid_argument("A key is empty");
        if (!isOptionKey(change.key))
            throw std::invalid_argument("A key is not valid UTF-8");
        if (!seen.insert(change.key).second)
            throw std::invalid_argument("A key is changed twice: " + change.key);
    }
}

/// The alternative of the transaction reads the key, so that a conflict can name its revision.
void addExpectation(etcdserverpb::TxnRequest& request, const std::string& key,
                    std::int64_t revision) {
    etcdserverpb::Compare& compare = *request.add_compare();
    compare.set_result(etcdserverpb::Compare::EQUAL);
    compare.set_target(etcdserverpb::Compare::MOD);
    compare.set_key(key);
    compare.set_mod_revision(revision);
    etcdserverpb::RangeRequest& range = *request.add_failure()->mutable_request_range();
    range.set_key(key);
    range.set_keys_only(true);
}

} // namespace

etcdserverpb::TxnRequest transactionOf(const std::vector<Change>& changes,
                                       const std::string& prefix) {
    checkKeys(changes);
    etcdserverpb::TxnRequest request;
    for (const Change& change : changes) {
        const std::string key = prefix + change.key;
        if (change.expectedRevision)
            addExpectation(request, key, *change.expectedRevision);
        etcdserverpb::RequestOp& operation = *request.add_success();
        if (change.value) {
            operation.mutable_request_put()->set_key(key);
            operation.mutable_request_put()->set_value(writeValue(*change.value));
        } else {
            operation.mutable_request_delete_range()->set_key(key);
        }
    }
    return request;
}

std::exception_ptr conflictOf(const etcdserverpb::TxnRequest& request,
                              const etcdserverpb::TxnResponse& response,
                              const std::string& prefix) {
    for (int i = 0; i < request.compare_size() && i < response.responses_size(); ++i) {
        const etcdserverpb::Compare& compare = request.compare(i);
        const etcdserverpb::RangeResponse& found = response.responses(i).response_range();
        const std::int64_t actual = found.kvs().empty() ? 0 : found.kvs(0).mod_revision();
        if (actual != compare.mod_revision())
            return std::make_exception_ptr(
                Conflict(compare.key().substr(prefix.size()), compare.mod_revision(), actual));
    }
    return std::make_exception_ptr(
        std::runtime_error("Not written: nonsense: a conflict without a cause"));
}

} // namespace connector::etcd::detail
