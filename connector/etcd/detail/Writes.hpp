/// The writes of a source.
#pragma once

#include <connector/async/Promise.hpp>
#include <connector/etcd/detail/Mailbox.hpp>
#include <connector/etcd/detail/UnaryCall.hpp>

#include <etcdserverpb/rpc.grpc.pb.h>
#include <grpcpp/grpcpp.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace connector::etcd::detail {

class Session;

/// A write and the promise of its revision.
struct Write {
    etcdserverpb::TxnRequest request;
    std::shared_ptr<Promise<std::int64_t>> promise = std::make_shared<Promise<std::int64_t>>();
    std::chrono::steady_clock::time_point deadline;
    bool wasRefused = false; ///< once, because of its token
};

/// Sends writes in the order in which they were submitted, as soon as there is a session, and fails
/// those that wait too long. Every write is answered once, by a task in the mailbox. All functions
/// but submit are for the network thread.
class Writes {
public:
    using Clock = std::chrono::steady_clock;

    Writes(Mailbox& newMailbox, std::string newPrefix);

    void submit(std::unique_ptr<Write> write);

    /// Sends what waits.
    /// @param token  of the last authentication
    void send(Session& session, grpc::CompletionQueue& queue, const std::string& token);

    /// Fails the writes whose time is over.
    /// @param cause  why they were not sent
    void expire(const std::string& cause);

    /// @return when the next write expires
    Clock::time_point due() const;

    /// Fails what waits, and cancels what was sent.
    void stop();

    /// @return whether a write was refused because of its token, since the last call
    bool takeRefusal();

private:
    using Response = etcdserverpb::TxnResponse;

    void takeSubmitted();
    void sendOne(std::shared_ptr<Write> write, Session& session, grpc::CompletionQueue& queue,
                 const std::string& token);
    void answered(const std::shared_ptr<Write>& write, const grpc::Status& status,
                  const Response& response);
    void fail(const Write& write, std::exception_ptr failure);

    Mailbox& mailbox;
    const std::string prefix;
    std::mutex mutex; // guards `submitted`
    std::vector<std::unique_ptr<Write>> submitted;
    std::deque<std::shared_ptr<Write>> waiting; // by their deadlines
    std::vector<std::weak_ptr<Call>> sent;
    bool hasRefusal = false;
    bool isStopped = false;
};

} // namespace connector::etcd::detail
