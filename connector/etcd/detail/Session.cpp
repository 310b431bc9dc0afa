#include <connector/etcd/detail/Session.hpp>

#include <connector/etcd/detail/Channel.hpp>

#include <utility>

namespace connector::etcd::detail {

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

} // namespace connector::etcd::detail
