/// A thread that runs one operation, and whose wait for a mutex can be observed.
#pragma once

#include <gtest/gtest.h>

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <functional>
#include <future>
#include <ios>
#include <string>
#include <thread>
#include <utility>

namespace test {

/// Linux shows the system call in which a thread sleeps, with its arguments. A thread that waits
/// for a mutex sleeps in the call futex, whose first argument is an address inside that mutex. A
/// test can therefore wait for the event "this thread blocks" and needs no timeout to show it.
class ObservedThread {
public:
    explicit ObservedThread(std::function<void()> operation)
        : result(std::async(std::launch::async,
                            [this, operation = std::move(operation)] {
                                threadId.set_value(static_cast<pid_t>(::syscall(SYS_gettid)));
                                operation();
                            })),
          systemCall("/proc/self/task/" + std::to_string(threadId.get_future().get()) +
                     "/syscall") {}

    /// Waits until the operation returns or blocks on a mutex that is a part of `object`.
    /// @return true when it blocks
    template <typename Object>
    bool blocksOn(const Object& object) const {
        const auto begin = reinterpret_cast<std::uintptr_t>(&object);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!hasReturned()) {
            const std::uintptr_t address = awaitedAddress();
            if (address >= begin && address - begin < sizeof(object))
                return true;
            if (std::chrono::steady_clock::now() > deadline) {
                ADD_FAILURE() << "the operation neither returns nor blocks on the object";
                return false;
            }
            std::this_thread::yield();
        }
        return false;
    }

    /// Waits until the operation returns. Throws what it threw.
    void join() { result.get(); }

private:
    bool hasReturned() const {
        return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }

    /// @return the address on which the thread sleeps; 0 when it runs
    std::uintptr_t awaitedAddress() const {
        std::ifstream stream(systemCall);
        long number = -1;
        std::uintptr_t address = 0;
        stream >> number >> std::hex >> address;
        return stream && number == SYS_futex ? address : 0;
    }

    std::promise<pid_t> threadId;
    std::future<void> result; // its destructor waits for the thread
    const std::string systemCall;
};

} // namespace test
