#include <connector/configuration/typed/detail/Follower.hpp>

#include <connector/configuration/detail/FailedSubscriber.hpp>

#include <utility>

namespace connector::configuration::detail {

namespace {

/// How many calls of tell this thread is inside of.
thread_local int depth = 0;

class Inside {
public:
    Inside() { ++depth; }
    ~Inside() { --depth; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
};

} // namespace

Follower::Follower(std::string newKey) : key(std::move(newKey)) {
}

Follower::~Follower() = default;

void Follower::hint() noexcept {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (ended)
            return;
        if (state != State::Idle) {
            again = true;
            return;
        }
        state = State::Reading;
        again = false;
    }
    run(readGuarded());
}

void Follower::start() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        again = false;
    }
    run(read());
}

/// REQUIRES: this thread is the one that runs, in Reading, and has read.
void Follower::run(bool hasNews) noexcept {
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        if (hasNews && !ended) {
            state = State::Telling;
            lock.unlock();
            tellGuarded();
            lock.lock();
            state = State::Reading;
            if (awaited)
                told.notify_all();
        }
        if (ended || !again)
            break;
        again = false;
        lock.unlock();
        hasNews = readGuarded();
        lock.lock();
    }
    state = State::Idle;
    // If end did not wait, because it was called inside a listener, the last call releases instead.
    const bool isLast = ended && !awaited && !std::exchange(released, true);
    lock.unlock();
    if (isLast)
        release();
}

void Follower::end() noexcept {
    std::unique_lock<std::mutex> lock(mutex);
    ended = true;
    if (depth == 0) {
        awaited = true;
        told.wait(lock, [this] { return state != State::Telling; });
    }
    const bool isLast = state != State::Telling && !std::exchange(released, true);
    lock.unlock();
    if (isLast)
        release();
}

bool Follower::readGuarded() noexcept {
    try {
        return read();
    } catch (...) {
        reportFailedSubscriber(key);
        return false;
    }
}

void Follower::tellGuarded() noexcept {
    const Inside inside;
    try {
        tell();
    } catch (...) {
        reportFailedSubscriber(key);
    }
}

} // namespace connector::configuration::detail
