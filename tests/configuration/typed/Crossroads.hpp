/// Where threads of a test meet.
#pragma once

#include <condition_variable>
#include <mutex>

namespace test {

/// Opens once.
class Gate {
public:
    void open() {
        const std::lock_guard<std::mutex> lock(mutex);
        isOpen = true;
        opened.notify_all();
    }
    void wait() {
        std::unique_lock<std::mutex> lock(mutex);
        opened.wait(lock, [this] { return isOpen; });
    }

private:
    std::mutex mutex;
    std::condition_variable opened;
    bool isOpen = false;
};

} // namespace test
