/// The thread that sends values to all HTTP clients that watch options.
#pragma once

#include <connector/service/http/EventConnection.hpp>
#include <connector/service/http/WakeDescriptor.hpp>

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace connector::service {

/// Sends to each client as fast as the client receives, without waiting for slower ones.
class EventWriter {
public:
    /// @param newSecrets          keys whose values are masked; must outlive this object
    /// @param newCommentInterval  how often each client gets a comment, which keeps the connection
    ///                            open
    /// @param newMaxConnections   how many clients may watch at the same time
    EventWriter(const Secrets& newSecrets, Clock::duration newCommentInterval,
                std::size_t newMaxConnections);
    ~EventWriter(); ///< finishes without waiting for clients

    /// Tells the thread that a stream has a value or has ended. May be called from any thread, with
    /// any lock held.
    void wake() noexcept { wakeDescriptor.signal(); }

    /// Takes over a client and its stream. May be called from any thread.
    /// @param head  bytes to send before the first event
    /// @return false, without any effect, if there are too many clients or the writer has finished
    bool add(const Poco::Net::StreamSocket& socket, const std::shared_ptr<EventStream>& stream,
             std::string head);

    /// Cancels all streams, sends the unsent values until the deadline and closes the connections.
    /// Must be called from the thread that owns this object.
    void finish(Clock::time_point deadline);

private:
    void run();
    void addPending();
    void waitForEvents();
    int waitingTime() const;
    void removeClosed();
    bool isFinished() const;

    const Secrets& secrets;
    const Clock::duration commentInterval;
    const std::size_t maxConnections;
    WakeDescriptor wakeDescriptor;

    std::mutex mutex;                   // guards the members up to finishDeadline
    std::list<EventConnection> pending; // added, but not yet seen by the thread
    std::size_t count = 0;              // of all connections, including the pending ones
    bool isFinishing = false;
    Clock::time_point finishDeadline = Clock::time_point::max();

    // Used by the thread only:
    std::list<EventConnection> connections;
    bool cancelled = false;
    Clock::time_point deadline = Clock::time_point::max();

    std::thread thread; // last, because it uses the other members
};

} // namespace connector::service
