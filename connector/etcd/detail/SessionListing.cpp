// The first call of a session, and the list.
#include <connector/etcd/detail/Session.hpp>

#include <connector/etcd/detail/Channel.hpp>
#include <connector/etcd/detail/Keys.hpp>
#include <connector/etcd/detail/Reading.hpp>

#include <utility>

namespace connector::etcd::detail {

namespace {

constexpr int mostLists = 3; // in a row, before the session gives up

} // namespace

/// The first call. It finds out soon whether somebody is there, and whether the history of the
/// engine is the known one.
void Session::greet() {
    const Witness& witness = known.witness;
    etcdserverpb::RangeRequest request;
    if (known.revision > 0 && !witness.key.empty()) {
        request.set_key(witness.key);
        request.set_revision(witness.at > 0 ? witness.at : known.revision);
    } else {
        request.set_key(probeKey(settings.options.prefix));
        request.set_revision(known.revision);
        request.set_keys_only(true);
    }
    range(request, settings.options.timing.answerTimeout, &Session::greeted);
}

void Session::greeted(const grpc::Status& status, const Range& answer) {
    const bool isGone = status.error_code() == grpc::StatusCode::OUT_OF_RANGE;
    if (wantsToken(status)) {
        refused(status, &Session::greet);
        return;
    }
    if (!status.ok() && !(isGone && known.revision > 0)) {
        fail(causeOf(status));
        return;
    }
    hasRenewed = false;
    target = answer.header().revision();
    if (status.ok() && continues(answer))
        watch();
    else
        list();
}

/// @return whether the changes since the known revision can be watched
bool Session::continues(const Range& answer) const {
    return known.revision > 0 && answer.header().cluster_id() == known.clusterId &&
           answer.header().revision() >= known.revision &&
           (known.witness.key.empty() || shows(answer, known.witness));
}

void Session::list() {
    if (++attempts > mostLists) {
        fail("the list was compacted while it was read, several times");
        return;
    }
    listing.emplace(settings.options.prefix);
    askForPage();
}

void Session::askForPage() {
    range(listing->next(), settings.options.timing.pageTimeout, &Session::listed);
}

void Session::listed(const grpc::Status& status, const Range& page) {
    if (wantsToken(status)) {
        refused(status, &Session::askForPage);
        return;
    }
    if (status.error_code() == grpc::StatusCode::OUT_OF_RANGE) {
        list();
        return;
    }
    if (!status.ok()) {
        fail(causeOf(status));
        return;
    }
    hasRenewed = false;
    if (!listing->take(page)) {
        askForPage();
        return;
    }
    List result = listing->result();
    known = result.known;
    target = known.revision;
    listener.sessionListed(std::move(result), listing->ignored());
    listing.reset();
    watch();
}

} // namespace connector::etcd::detail
