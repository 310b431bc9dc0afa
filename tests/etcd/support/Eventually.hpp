/// Waits for conditions.
#pragma once

#include <chrono>
#include <thread>

namespace test {

/// Asks again and again, for events outside of this process that announce themselves to nobody.
/// @return whether the condition became true within the time
template <typename Condition>
bool eventually(Condition condition, std::chrono::seconds limit = std::chrono::seconds(60)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

/// For limits of time: the machine may be busy, so one of three attempts must keep the limit.
/// @param attempt  returns whether it was in time
template <typename Attempt>
bool oneOfThree(Attempt attempt) {
    return attempt() || attempt() || attempt();
}

} // namespace test
