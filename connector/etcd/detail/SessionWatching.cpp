// The watch of a session, and its signs of life.
#include <connector/etcd/detail/Session.hpp>

#include <connector/etcd/detail/Channel.hpp>
#include <connector/etcd/detail/Keys.hpp>

#include <algorithm>
#include <utility>

namespace connector::etcd::detail {

void Session::watch() {
    watching.emplace(settings.options.prefix, known);
    const auto ifPresent = [weak = weak_from_this(), number = ++watches](auto action) {
        const auto self = weak.lock();
        if (self && self->watches == number)
            self->step([&] { action(*self); });
    };
    stream = std::make_shared<WatchStream>(
        token,
        [ifPresent](const etcdserverpb::WatchResponse& message) {
            ifPresent([&](Session& self) { self.watchSpoke(message); });
        },
        [ifPresent](const grpc::Status& status) {
            ifPresent([&](Session& self) { self.watchEnded(status); });
        });
    stream->start(channel, queue, watching->begin());
    askedAt = Clock::now();
    probeAt = Clock::now() + settings.options.timing.probeInterval;
}

void Session::watchSpoke(const etcdserverpb::WatchResponse& message) {
    lastSign = Clock::now();
    askedAt.reset();
    switch (watching->take(message)) {
    case Watching::News::None:
        break;
    case Watching::News::Began:
        watchBegan();
        break;
    case Watching::News::Changed:
        watchChanged();
        break;
    case Watching::News::Compacted:
        startAgain();
        break;
    }
}

void Session::watchBegan() {
    attempts = 0;
    hasFollowed = true;
    listener.sessionBeganToWatch();
    if (watching->known().revision >= target)
        becomeCurrent();
    else
        quietAt = Clock::now() + settings.options.timing.catchUpTime;
}

void Session::watchChanged() {
    const std::uint64_t ignored = watching->takeIgnored();
    listener.sessionChanged(watching->takeChanges(), ignored);
    if (isCurrent)
        return;
    isLastProbe = false;
    if (watching->known().revision >= target)
        becomeCurrent();
    else
        quietAt = Clock::now() + settings.options.timing.catchUpTime;
}

/// The revision after the known one is compacted.
void Session::startAgain() {
    ++watches; // what the present one says is ignored
    stream->cancel();
    stream.reset();
    watching.reset();
    quietAt.reset();
    askedAt.reset();
    hasFollowed = false;
    list();
}

void Session::watchEnded(const grpc::Status& status) {
    fail(status.ok() ? "the watch ended" : causeOf(status));
}

/// The engine does not say that a watch has caught up. It looks for missed changes ten times a
/// second and reports them; so when nothing came for longer, and the engine answers a question
/// after that, there were none.
void Session::becomeCurrent() {
    isCurrent = true;
    quietAt.reset();
    listener.sessionIsCurrent();
}

// Signs of life

Session::Clock::time_point Session::due() const {
    if (!stream || hasFailed)
        return Clock::time_point::max(); // calls have deadlines of their own
    Clock::time_point first = probeAt;
    if (askedAt)
        first = std::min(first, *askedAt + settings.options.timing.answerTimeout);
    if (quietAt && !isProbing)
        first = std::min(first, *quietAt);
    return first;
}

void Session::onTime() {
    step([this] {
        const Clock::time_point now = Clock::now();
        if (!stream || now < due())
            return;
        if (askedAt && now >= *askedAt + settings.options.timing.answerTimeout)
            fail("the watch does not answer");
        else
            askForLife();
    });
}

void Session::askForLife() {
    const Clock::time_point now = Clock::now();
    const bool isQuiet = quietAt && now >= *quietAt;
    if (now < probeAt && (isProbing || !isQuiet))
        return;
    probeAt = now + settings.options.timing.probeInterval;
    if (hasFollowed && !askedAt) {
        stream->requestProgress();
        askedAt = now;
    }
    if (isProbing)
        return;
    isLastProbe = isQuiet;
    probe();
}

/// Asks for a key that does not exist. The answer needs a leader, and costs the engine next to
/// nothing.
void Session::probe() {
    etcdserverpb::RangeRequest request;
    request.set_key(probeKey(settings.options.prefix));
    request.set_keys_only(true);
    isProbing = true;
    range(request, settings.options.timing.answerTimeout, &Session::probed);
}

void Session::probed(const grpc::Status& status, const Range& answer) {
    if (wantsToken(status)) {
        refused(status, &Session::probe);
        return;
    }
    if (!status.ok()) {
        fail(causeOf(status));
        return;
    }
    if (answer.header().cluster_id() != known.clusterId) {
        fail("the cluster changed");
        return;
    }
    hasRenewed = false;
    isProbing = false;
    if (std::exchange(isLastProbe, false) && quietAt)
        becomeCurrent();
}

} // namespace connector::etcd::detail
