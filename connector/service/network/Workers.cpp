#include <connector/service/network/Workers.hpp>

#include <boost/asio/post.hpp>

#include <utility>

namespace connector::service {

Workers::Workers(boost::asio::io_context& io) : wake(io, signal, [this] { finishAll(); }) {
}

void Workers::run(std::unique_ptr<Task> task) {
    boost::asio::post(*pool, [this, task = std::move(task)]() mutable {
        task->work();
        add(std::move(task));
    });
}

void Workers::stop() {
    if (pool) {
        pool->stop();
        pool->join();
    }
    wake.close();
}

/// Needs no memory: a result must not be lost.
void Workers::add(std::unique_ptr<Task> task) noexcept {
    bool isFirst = false;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isFirst = done == nullptr;
        task->next = std::move(done);
        done = std::move(task);
    }
    if (isFirst)
        signal->raise();
}

void Workers::finishAll() {
    std::unique_ptr<Task> last;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        last = std::move(done);
    }
    std::unique_ptr<Task> first; // in the order in which they were done
    while (last != nullptr) {
        std::unique_ptr<Task> before = std::move(last->next);
        last->next = std::move(first);
        first = std::move(last);
        last = std::move(before);
    }
    while (first != nullptr) {
        const std::unique_ptr<Task> task = std::move(first);
        first = std::move(task->next);
        task->finish();
    }
}

} // namespace connector::service
