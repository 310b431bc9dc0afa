/// One connection to one endpoint, from the first call to its failure.
#pragma once

#include <connector/etcd/detail/Listing.hpp>
#include <connector/etcd/detail/Settings.hpp>
#include <connector/etcd/detail/UnaryCall.hpp>
#include <connector/etcd/detail/Update.hpp>
#include <connector/etcd/detail/WatchStream.hpp>
#include <connector/etcd/detail/Watching.hpp>

#include <etcdserverpb/rpc.grpc.pb.h>
#include <grpcpp/grpcpp.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace connector::etcd::detail {

/// What a session reports. Called on the network thread.
class SessionListener {
public:
    virtual ~SessionListener() = default;
    virtual void sessionListed(List list, std::uint64_t ignored) = 0;
    virtual void sessionBeganToWatch() = 0;
    virtual void sessionChanged(Changes changes, std::uint64_t ignored) = 0;
    virtual void sessionIsCurrent() = 0;
    /// Called once; nothing follows.
    virtual void sessionFailed(const std::string& cause) = 0;
};

/// Authenticates if needed, checks that the engine has the history that is known, lists if not,
/// watches, and asks for signs of life. Used by the network thread only. Its operations keep no
/// session alive: what completes after its end is ignored.
class Session : public std::enable_shared_from_this<Session> {
public:
    using Clock = std::chrono::steady_clock;

    /// @param newToken  of the last authentication; outlives the session, as everything else does
    Session(const Settings& newSettings, const Endpoint& newEndpoint,
            grpc::CompletionQueue& newQueue, SessionListener& newListener, std::string& newToken,
            Known newKnown);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void start();

    /// @return when onTime is to be called
    Clock::time_point due() const;
    void onTime();

    /// @return whether writes may be sent
    bool isUsable() const { return hasFollowed && !isRenewing; }

    const std::shared_ptr<grpc::Channel>& openChannel() const { return channel; }

    /// Fetches a new token: the present one was refused. The session is not usable meanwhile.
    void renewToken();

private:
    using Next = void (Session::*)();
    using Range = etcdserverpb::RangeResponse;

    void authenticate(Next next);
    void authenticated(const grpc::Status& status, const std::string& newToken, Next next);
    void greet();
    void greeted(const grpc::Status& status, const Range& answer);
    bool continues(const Range& answer) const;
    void list();
    void askForPage();
    void listed(const grpc::Status& status, const Range& page);
    void watch();
    void watchSpoke(const etcdserverpb::WatchResponse& message);
    void watchBegan();
    void watchChanged();
    void watchEnded(const grpc::Status& status);
    void startAgain();
    void askForLife();
    void probe();
    void probed(const grpc::Status& status, const Range& answer);
    void becomeCurrent();
    void refused(const grpc::Status& status, Next next);
    void tokenRenewed() { isRenewing = false; }
    template <typename Started, typename Prepare>
    void begin(const std::shared_ptr<Started>& call, Prepare prepare);
    void fail(const std::string& cause);
    template <typename Action>
    void step(Action action);
    void range(const etcdserverpb::RangeRequest& request, std::chrono::milliseconds timeout,
               void (Session::*reaction)(const grpc::Status&, const Range&));

    const Settings& settings;
    const Endpoint endpoint;
    grpc::CompletionQueue& queue;
    SessionListener& listener;
    std::string& token;
    Known known;

    std::shared_ptr<grpc::Channel> channel;
    std::unique_ptr<etcdserverpb::KV::Stub> kv;
    std::unique_ptr<etcdserverpb::Auth::Stub> auth;
    std::vector<std::weak_ptr<Call>> calls;
    std::optional<Listing> listing;
    std::optional<Watching> watching;
    std::shared_ptr<WatchStream> stream;

    int attempts = 0;        // to list, since the last one that succeeded
    int watches = 0;         // that this session began
    bool hasRenewed = false; // the token, since the last call that succeeded
    bool isRenewing = false;
    bool hasFailed = false;
    bool hasFollowed = false; // the watch began
    bool isCurrent = false;
    bool isProbing = false;
    std::int64_t target = 0;                  // the revision at which the watch has caught up
    Clock::time_point probeAt;                // the next one
    Clock::time_point lastSign;               // of the watch
    std::optional<Clock::time_point> askedAt; // for a sign of life that has not come
    std::optional<Clock::time_point> quietAt; // when the watch has caught up if nothing comes
    bool isLastProbe = false; // the probe after whose answer the watch has caught up
};

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

template <typename Started, typename Prepare>
void Session::begin(const std::shared_ptr<Started>& call, Prepare prepare) {
    const auto isOver = [](const std::weak_ptr<Call>& weak) { return weak.expired(); };
    calls.erase(std::remove_if(calls.begin(), calls.end(), isOver), calls.end());
    calls.push_back(call);
    call->start(prepare);
}

} // namespace connector::etcd::detail
