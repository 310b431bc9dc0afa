/// The thread of a source that reads the network.
#pragma once

#include <connector/etcd/detail/Backoff.hpp>
#include <connector/etcd/detail/Board.hpp>
#include <connector/etcd/detail/Known.hpp>
#include <connector/etcd/detail/Mailbox.hpp>
#include <connector/etcd/detail/Operation.hpp>
#include <connector/etcd/detail/Session.hpp>
#include <connector/etcd/detail/Settings.hpp>
#include <connector/etcd/detail/Wake.hpp>
#include <connector/etcd/detail/Writes.hpp>

#include <grpcpp/grpcpp.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace connector::etcd::detail {

/// Keeps one session alive, over all endpoints, with pauses between the attempts, and sends writes
/// through it. Everything that the application is to know goes to the mailbox and the board. `run`
/// is for one thread; submit and stop may be called from any thread.
class Network : private SessionListener {
public:
    Network(const Settings& newSettings, Known newKnown, Mailbox& newMailbox, Board& newBoard);
    ~Network() override;

    /// Until stop is called. Afterwards every write is answered.
    void run();

    void submit(std::unique_ptr<Write> write);
    void stop();

private:
    using Clock = std::chrono::steady_clock;

    void sessionListed(List list, std::uint64_t ignored) override;
    void sessionBeganToWatch() override;
    void sessionChanged(Changes changes, std::uint64_t ignored) override;
    void sessionIsCurrent() override;
    void sessionFailed(const std::string& cause) override;

    void waitForOneOperation();
    Clock::time_point due() const;
    void onTime();
    void connect();
    void pauseAfter(bool wasCurrent);
    void shutDown();

    const Settings& settings;
    Mailbox& mailbox;
    Board& board;
    Known known;
    std::string token; // of the last authentication
    Backoff backoff;

    grpc::CompletionQueue queue;
    Wake wake;
    Writes writes;
    std::atomic<bool> isStopping{false};

    std::shared_ptr<Session> session;
    std::uint64_t sessions = 0;      // their number
    std::size_t nextEndpoint;        // an index
    std::size_t failuresOfRound = 0; // since the last pause
    Clock::time_point roundBegan;
    std::optional<Clock::time_point> currentSince; // of the present session
    Clock::time_point connectAt;                   // if there is no session
    bool isShutDown = false;
};

} // namespace connector::etcd::detail
