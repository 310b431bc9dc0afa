/// Reports the newest state of something to a listener, whichever threads change it.
///
/// The state is always read anew: the hint that something changed carries no value. So the order
/// and the delay of hints do not matter: the last reading after the last hint has the present
/// state.
///
///              hint                    news, not ended
///     Idle ------------> Reading -------------------------> Telling
///      ^  not again,       |  ^                                |
///      |  or ended         |  |  again and not ended           |
///      '-------------------'  '--------------------------------'
///      ^                                 not again, or ended   |
///      '-------------------------------------------------------'
///
/// One thread at a time is in Reading and Telling: the one whose hint found Idle. A hint that finds
/// another state only sets `again` and returns; the running thread then reads once more. So no
/// notifying thread ever waits for a listener that runs on another thread. It must not wait: it may
/// hold the configuration's mutex, which that listener may need.
///
/// A follower begins in Reading, run by the thread that makes it: a hint before start() only sets
/// `again`.
///
/// Locks: `mutex` is the innermost of all. Nothing is called while it is held.
#pragma once

#include <connector/Export.hpp>

#include <condition_variable>
#include <mutex>
#include <string>

namespace connector::configuration::detail {

class CONNECTOR_EXPORT Follower {
public:
    virtual ~Follower();
    Follower(const Follower&) = delete;
    Follower& operator=(const Follower&) = delete;

    /// Reports that something may have changed. From any thread. The caller keeps the follower
    /// alive.
    void hint() noexcept;

    /// Reads for the first time, and notifies. Called once, by the code that made the follower.
    /// @throws what read throws the first time; the listener is not notified then
    void start();

    /// After this no call of tell begins. Waits for a running one to end, unless this thread is
    /// inside a call of tell of any follower. May be called by the notified thread.
    void end() noexcept;

protected:
    /// @param newKey  named when tell or read throws
    explicit Follower(std::string newKey);

    /// Reads the present state. @return whether there is something to report
    virtual bool read() = 0;

    /// Notifies the listener of what was read. Its exceptions are reported.
    virtual void tell() = 0;

    /// Releases everything that tell needs, and the sources of hints. Called at most once, after
    /// the last call of tell; a call of read may be running on another thread.
    virtual void release() noexcept = 0;

    const std::string key;

private:
    enum class State {
        Idle,    ///< no thread runs
        Reading, ///< a thread runs, and calls nothing that end must wait for
        Telling, ///< a thread runs the listener
    };

    void run(bool hasNews) noexcept;
    bool readGuarded() noexcept;
    void tellGuarded() noexcept;

    std::mutex mutex; // guards everything below
    std::condition_variable told;
    State state = State::Reading;
    bool again = false;    // something may have changed since the last reading began
    bool ended = false;    // for good
    bool awaited = false;  // end waits, or has waited, and releases
    bool released = false; // release was called, or is about to be
};

} // namespace connector::configuration::detail
