/// From options to those who watch them over HTTP: the side of the clients.
#pragma once

#include <connector/service/http/EventClient.hpp>

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace connector::service {

/// Writes the events of all clients on one thread of its own, to each as fast as that takes them.
class EventWriter {
public:
    /// @param newSecrets          whose values are masked
    /// @param newCommentInterval  how often a comment keeps a stream open
    /// @param newMostStreams      how many clients may watch at a time
    EventWriter(const Secrets& newSecrets, Clock::duration newCommentInterval,
                std::size_t newMostStreams);
    ~EventWriter(); ///< finishes at once

    /// Something to take has come. May be called from any thread, under any lock.
    void wake() noexcept;

    /// Takes over a client and its stream. May be called from any thread.
    /// @param beginning  what is written first
    /// @return false if there are too many already, or it is all over; then nothing happened
    bool add(const Poco::Net::StreamSocket& socket, const std::shared_ptr<EventStream>& stream,
             std::string beginning);

    /// Cancels all streams, writes what their clients take until the deadline, and closes them. For
    /// the thread that made this object.
    void finish(Clock::time_point deadline);

private:
    void run();
    void takeNewcomers();
    void waitForAnything();
    int patience() const;
    void serve(EventClient& client);
    void dropThoseWhoWent();
    bool isOver();

    const Secrets& secrets;
    const Clock::duration commentInterval;
    const std::size_t mostStreams;
    const int wakeDescriptor;

    std::mutex mutex; // guards what follows
    std::list<EventClient> newcomers;
    std::size_t count = 0; // of all clients, newcomers included
    bool isFinishing = false;
    Clock::time_point finishDeadline = Clock::time_point::max();

    // Of the thread alone.
    std::list<EventClient> clients;
    bool cancelled = false;
    Clock::time_point deadline = Clock::time_point::max();

    std::thread thread; // last, for it uses all the others
};

} // namespace connector::service
