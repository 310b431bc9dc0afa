#include <connector/etcd/detail/Session.hpp>

#include <connector/etcd/detail/Channel.hpp>
#include <connector/etcd/detail/Keys.hpp>
#include <connector/etcd/detail/Reading.hpp>

#include <algorithm>
#include <exception>
#include <utility>

namespace connector::etcd::detail {

namespace {

constexpr int mostLists = 3; // in a row, before the session gives up

} // namespace

Session::Session(const Settings& newSettings, const Endpoint& newEndpoint,
                 grpc::CompletionQueue& newQueue, SessionListener& newListener,
                 std::string& newToken, Known newKnown)
    : settings(newSettings), endpoint(newEndpoint), queue(newQueue), listener(newListener),
      token(newToken), known(std::move(newKnown)) {
}

Session::~Session() {
    for (const std::weak_ptr<Call>& weak : calls) {
        if (const auto call = weak.lock())
            call->cancel();
    }
    if (stream)
        stream->cancel();
}

/// What a step throws is the failure of the session.
template <typename Action>
void Session::step(Action action) {
    if (hasFailed)
        return;
    try {
        action();
    } catch (const std::exception& error) {
        fail(error.what());
    }
}

void Session::start() {
    step([this] {
        channel = makeChannel(endpoint, settings.options.tls);
        kv = etcdserverpb::KV::NewStub(channel);
        auth = etcdserverpb::Auth::NewStub(channel);
        if (!settings.options.user.empty() && token.empty())
            authenticate(&Session::greet);
        else
            greet();
    });
}

void Session::fail(const std::string& cause) {
    if (std::exchange(hasFailed, true))
        return;
    hasFollowed = false;
    listener.sessionFailed(endpoint.url + ": " + cause);
}

void Session::range(const etcdserverpb::RangeRequest& request, std::chrono::milliseconds timeout,
                    void (Session::*reaction)(const grpc::Status&, const Range&)) {
    auto started = std::make_shared<UnaryCall<Range>>(
        token, std::chrono::system_clock::now() + timeout,
        [weak = weak_from_this(), reaction](const grpc::Status& status, const Range& answer) {
            if (const auto self = weak.lock())
                self->step([&] { (self.get()->*reaction)(status, answer); });
        });
    begin(started, [&](grpc::ClientContext* context) {
        return kv->PrepareAsyncRange(context, request, &queue);
    });
}

template <typename Started, typename Prepare>
void Session::begin(const std::shared_ptr<Started>& call, Prepare prepare) {
    const auto isOver = [](const std::weak_ptr<Call>& weak) { return weak.expired(); };
    calls.erase(std::remove_if(calls.begin(), calls.end(), isOver), calls.end());
    calls.push_back(call);
    call->start(prepare);
}

// Authentication

void Session::authenticate(Next next) {
    etcdserverpb::AuthenticateRequest request;
    request.set_name(settings.options.user);
    request.set_password(passwordOf(settings.options));
    using Response = etcdserverpb::AuthenticateResponse;
    auto started = std::make_shared<UnaryCall<Response>>(
        "", std::chrono::system_clock::now() + settings.options.timing.answerTimeout,
        [weak = weak_from_this(), next](const grpc::Status& status, const Response& answer) {
            if (const auto self = weak.lock())
                self->step([&] { self->authenticated(status, answer.token(), next); });
        });
    begin(started, [&](grpc::ClientContext* context) {
        return auth->PrepareAsyncAuthenticate(context, request, &queue);
    });
}

void Session::authenticated(const grpc::Status& status, const std::string& newToken, Next next) {
    const bool isOff = status.error_code() == grpc::StatusCode::FAILED_PRECONDITION;
    if (!status.ok() && !isOff) {
        fail(causeOf(status));
        return;
    }
    token = isOff ? "" : newToken;
    (this->*next)();
}

/// A token lapses; a new one is fetched once in a row, and the call repeated.
void Session::refused(const grpc::Status& status, Next next) {
    token.clear();
    if (settings.options.user.empty() || std::exchange(hasRenewed, true))
        fail(causeOf(status));
    else
        authenticate(next);
}

void Session::renewToken() {
    step([this] {
        if (settings.options.user.empty() || std::exchange(isRenewing, true))
            return;
        token.clear();
        authenticate(&Session::tokenRenewed);
    });
}

// Listing

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

// Watching

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
