#include <connector/service/network/Workers.hpp>

#include <boost/asio/post.hpp>

#include <chrono>
#include <utility>

namespace connector::service {

namespace {

/// How long a task may delay others.
constexpr std::chrono::milliseconds patience{1};

/// So many results are fetched while the worker goes on: both threads have something to do then.
constexpr std::size_t largestBatch = 32;

} // namespace

Workers::Workers(boost::asio::io_context& newIo)
    : io(newIo), timer(io), wake(io, signal, [this] { finishAll(); }) {
}

void Workers::start(std::size_t count) {
    threads.reserve(count);
    while (threads.size() < count)
        threads.emplace_back([this] { work(); });
}

void Workers::resume() {
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
        const bool isAnyBusy = idle < threads.size();
        if (!isAnyBusy || Clock::now() - lastBegin > patience)
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
    timer.expires_after(patience);
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
    lastBegin = Clock::now();
    wakening.notify_one();
}

void Workers::work() noexcept {
    std::unique_lock<std::mutex> lock(mutex);
    while (!isStopped) {
        if (waiting.isEmpty()) {
            ++idle;
            wakening.wait(lock, [this] { return woken > 0 || isStopped; });
            if (!isStopped)
                --woken;
            continue;
        }
        std::unique_ptr<Task> task = waiting.removeFirst();
        ++begun;
        lastBegin = Clock::now();
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
