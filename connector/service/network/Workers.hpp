/// The threads that may wait for the configuration, so that the network thread never does.
#pragma once

#include <connector/service/network/Clock.hpp>
#include <connector/service/network/Task.hpp>
#include <connector/service/network/Wake.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace connector::service {

/// Waking a thread costs more than most tasks. So the network thread hands over all tasks that it
/// has found in one turn, and wakes one worker for them. The worker wakes the network thread when
/// it has done the last one. A task that takes longer than `maxDelay` delays the others no longer
/// than that: then another worker goes on with them, and the network thread fetches the results.
class Workers {
public:
    explicit Workers(boost::asio::io_context& newIo);
    ~Workers() { stop(); }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// Starts the threads.
    /// @throws std::system_error  the system has no thread left
    void start(std::size_t count);

    /// Called before the first task, and again when a handler of the network thread has thrown.
    void resume();

    /// Called by the network thread.
    /// @throws std::bad_alloc  the task is destroyed
    void run(std::unique_ptr<Task> task);

    /// Waits for the tasks that run. Those that wait to run, and all results, are dropped.
    void stop();

private:
    void handOver();
    void scheduleCheck();
    void check();
    void finishAll() noexcept;

    void work(std::size_t worker) noexcept;
    void wakeWorker() noexcept;
    bool isWorkerComing() const noexcept;

    boost::asio::io_context& io;
    TaskList found; // in this turn of the network thread, which alone uses these three
    boost::asio::steady_timer timer;
    bool isCheckScheduled = false;

    std::mutex mutex; // guards what follows, up to isStopped
    TaskList waiting;
    std::uint64_t handedOver = 0;          // tasks, ever
    std::uint64_t begun = 0;               // tasks, ever
    std::uint64_t handedOverAtCheck = 0;   // those that should be begun at the next one
    std::vector<Clock::time_point> begins; // of the task that each worker runs; else notRunning
    TaskList done;
    std::size_t unreported = 0; // results that the network thread was not woken for
    std::size_t idle = 0;       // workers that wait, and are not woken
    std::size_t woken = 0;      // workers that do not know yet that they are
    Clock::time_point wakeTime; // of the last one
    std::condition_variable wakening;
    bool isStopped = false;

    const std::shared_ptr<const Signal> signal = std::make_shared<Signal>();
    Wake wake;
    std::vector<std::thread> threads;
};

} // namespace connector::service
