#include <connector/service/network/Workers.hpp>

#include <boost/asio/post.hpp>

#include <algorithm>
#include <chrono>
#include <utility>

namespace connector::service {

namespace {

/// How long a task may delay others.
constexpr std::chrono::milliseconds maxDelay{1};

/// So many results are fetched while the worker goes on: both threads have something to do then.
constexpr std::size_t largestBatch = 32;

constexpr Clock::time_point notRunning = Clock::time_point::min();

} // namespace

Workers::Workers(boost::asio::io_context& newIo)
    : io(newIo), timer(io), wake(io, signal, [this] { finishAll(); }) {
}

void Workers::start(std::size_t count) {
    threads.reserve(count);
    begins.assign(count, notRunning);
    for (std::size_t worker = 0; worker < count; ++worker)
        threads.emplace_back([this, worker] { work(worker); });
}

void Workers::resume() {
    finishAll(); // results hold memory
    wake.start();
    scheduleCheck(); // the handler that has thrown may have been about to
}

void Workers::run(std::unique_ptr<Task> task) {
    if (found.isEmpty()) // a posted handler runs behind those of this turn
        boost::asio::post(io, [this] { handOver(); });
    found.add(std::move(task));
}

void Workers::handOver() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!isWorkerComing())
            wakeWorker();
        handedOver += found.size();
        if (!isCheckScheduled)
            handedOverAtCheck = handedOver;
        waiting.addAll(found);
    }
    scheduleCheck();
}

void Workers::scheduleCheck() {
    if (isCheckScheduled)
        return;
    timer.expires_after(maxDelay);
    timer.async_wait([this](const boost::system::error_code& error) {
        isCheckScheduled = false;
        if (!error)
            check();
    });
    isCheckScheduled = true; // not before: the calls above may have no memory
}

void Workers::check() {
    finishAll();
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (waiting.isEmpty())
            return; // whoever does the last task wakes this thread
        if (begun < std::exchange(handedOverAtCheck, handedOver))
            wakeWorker();
    }
    scheduleCheck();
}

void Workers::finishAll() noexcept {
    TaskList results;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        results.addAll(done);
        unreported = 0;
    }
    while (!results.isEmpty())
        results.removeFirst()->finish();
}

/// Called with the mutex.
void Workers::wakeWorker() noexcept {
    if (idle == 0)
        return;
    --idle;
    ++woken;
    wakeTime = Clock::now();
    wakening.notify_one();
}

/// @return whether a worker takes the next task soon, as far as it can be known. Called with the
///         mutex.
bool Workers::isWorkerComing() const noexcept {
    const Clock::time_point recently = Clock::now() - maxDelay;
    return (woken > 0 && wakeTime > recently) ||
           std::any_of(begins.begin(), begins.end(),
                       [&](Clock::time_point begin) { return begin > recently; });
}

void Workers::work(std::size_t worker) noexcept {
    std::unique_lock<std::mutex> lock(mutex);
    while (!isStopped) {
        if (waiting.isEmpty()) {
            begins[worker] = notRunning;
            ++idle;
            wakening.wait(lock, [this] { return woken > 0 || isStopped; });
            if (!isStopped)
                --woken;
            continue;
        }
        std::unique_ptr<Task> task = waiting.removeFirst();
        ++begun;
        begins[worker] = Clock::now();
        lock.unlock();
        task->work();
        lock.lock();
        done.add(std::move(task));
        ++unreported;
        if (waiting.isEmpty() || unreported == largestBatch) {
            unreported = 0;
            lock.unlock();
            signal->raise();
            lock.lock();
        }
    }
}

void Workers::stop() {
    TaskList dropped;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isStopped = true;
        dropped.addAll(waiting);
    }
    dropped.clear();
    wakening.notify_all();
    for (std::thread& thread : threads)
        thread.join();
    threads.clear();
    found.clear();
    done.clear();
    timer.cancel();
    wake.close();
}

} // namespace connector::service
