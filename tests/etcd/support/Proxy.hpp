/// A connection that can be disturbed.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace test {

/// Forwards connections to a port. All functions may be called from any thread; a disturbance
/// concerns open connections and new ones.
class Proxy {
public:
    explicit Proxy(int newTarget);
    ~Proxy();
    Proxy(const Proxy&) = delete;
    Proxy& operator=(const Proxy&) = delete;

    std::string endpoint() const { return "http://127.0.0.1:" + std::to_string(port); }

    /// Forwards everything at once.
    void pass();
    /// Closes all connections, and every new one.
    void refuse();
    /// Forwards nothing and closes nothing, as when a machine vanishes.
    void drop();
    /// Forwards everything later.
    void delay(std::chrono::milliseconds time);
    /// New connections are forwarded to another port.
    void redirect(int newTarget) { target = newTarget; }
    /// Closes all connections once so many bytes have come from the target.
    void cutAfter(std::int64_t bytes);

    /// @return the bytes from the target so far
    std::int64_t received() const { return bytesReceived; }

private:
    enum class Mode : std::uint8_t { Pass, Refuse, Drop };
    class Link;

    void run();
    void accept();
    void forward();
    void wake() const;

    std::atomic<int> target;
    int listener = -1;
    int port = 0;
    int bell = -1;
    std::atomic<Mode> mode{Mode::Pass};
    std::atomic<std::int64_t> delayMilliseconds{0};
    std::atomic<std::int64_t> bytesUntilCut{-1};
    std::atomic<std::int64_t> bytesReceived{0};
    std::atomic<bool> isOver{false};
    std::list<Link> links;
    std::thread thread;
};

} // namespace test
