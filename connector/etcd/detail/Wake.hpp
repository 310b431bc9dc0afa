/// Wakes the thread that waits for a completion queue.
#pragma once

#include <connector/etcd/detail/Operation.hpp>

#include <grpcpp/alarm.h>
#include <grpcpp/grpcpp.h>

#include <chrono>
#include <mutex>

namespace connector::etcd::detail {

/// ring may be called from any thread until close was called.
class Wake : public Operation {
public:
    explicit Wake(grpc::CompletionQueue& newQueue) : queue(newQueue) {}

    void ring() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (isRinging || isClosed)
            return;
        isRinging = true;
        alarm.Set(&queue, std::chrono::system_clock::now(), tag());
    }

    /// Before the queue is shut down.
    void close() {
        const std::lock_guard<std::mutex> lock(mutex);
        isClosed = true;
    }

    void completed(bool) override {
        const std::lock_guard<std::mutex> lock(mutex);
        isRinging = false;
    }

private:
    grpc::CompletionQueue& queue;
    std::mutex mutex; // guards what follows
    grpc::Alarm alarm;
    bool isRinging = false;
    bool isClosed = false;
};

} // namespace connector::etcd::detail
