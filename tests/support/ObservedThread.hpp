/// A thread that runs one operation, and whose wait for a mutex or for input can be observed.
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
        return blocks([this, begin] {
            const std::uintptr_t address = awaitedAddress();
            return address >= begin && address - begin < sizeof(object);
        });
    }

    /// Waits until the operation returns or sleeps in poll.
    /// @return true when it sleeps
    bool blocksInPoll() const {
        return blocks([this] {
            const long number = sleepingCall().first;
#ifdef SYS_poll
            if (number == SYS_poll)
                return true;
#endif
            return number == SYS_ppoll;
        });
    }

    /// Waits until the operation returns. Throws what it threw.
    void join() {
        result.get();
    }

private:
    bool hasReturned() const {
        return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }

    template <typename Condition>
    bool blocks(Condition condition) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!hasReturned()) {
            if (condition())
                return true;
            if (std::chrono::steady_clock::now() > deadline) {
                ADD_FAILURE() << "the operation neither returns nor blocks";
                return false;
            }
            std::this_thread::yield();
        }
        return false;
    }

    /// @return the system call in which the thread sleeps, and its first argument; -1 when it runs
    std::pair<long, std::uintptr_t> sleepingCall() const {
        std::ifstream stream(systemCall);
        std::pair<long, std::uintptr_t> call{-1, 0};
        stream >> call.first >> std::hex >> call.second;
        return stream ? call : std::pair<long, std::uintptr_t>{-1, 0};
    }

    /// @return the address on which the thread sleeps; 0 when it runs
    std::uintptr_t awaitedAddress() const {
        const auto [number, argument] = sleepingCall();
        return number == SYS_futex ? argument : 0;
    }

    std::promise<pid_t> threadId;
    std::future<void> result; // its destructor waits for the thread
    const std::string systemCall;
};

} // namespace test
