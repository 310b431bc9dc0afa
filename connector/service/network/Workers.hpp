/// The threads that may wait for the configuration, so that the network thread never does.
#pragma once

#include <connector/service/network/Wake.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/thread_pool.hpp>

#include <memory>
#include <mutex>
#include <optional>

namespace connector::service {

/// Work for another thread, and what the network thread does with its result.
class Task {
public:
    virtual ~Task() = default;

    /// Runs on a worker. Keeps its failures for `finish`.
    virtual void work() noexcept = 0;

    /// Runs on the network thread afterwards.
    virtual void finish() noexcept = 0;

private:
    friend class Workers;
    std::unique_ptr<Task> next; // in the list of those that are done
};

class Workers {
public:
    explicit Workers(boost::asio::io_context& io);

    /// Starts the threads.
    void start(std::size_t threads) { pool.emplace(threads); }

    /// Called before the first task, and again when a handler of the network thread has thrown.
    void resume() { wake.start(); }

    /// Called by the network thread.
    /// @throws std::bad_alloc  the task is destroyed
    void run(std::unique_ptr<Task> task);

    /// Waits for the tasks that run. Those that wait to run, and all results, are dropped.
    void stop();

private:
    void finishAll();
    void add(std::unique_ptr<Task> task) noexcept;

    std::mutex mutex;           // guards `done`
    std::unique_ptr<Task> done; // the last one first; a list, because adding needs no memory
    const std::shared_ptr<const Signal> signal = std::make_shared<Signal>();
    Wake wake;
    std::optional<boost::asio::thread_pool> pool;
};

} // namespace connector::service
