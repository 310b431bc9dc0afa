/// A writer that counts up, and readers that record what they see.
#pragma once

#include "Fixture.hpp"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <thread>

namespace test {

/// Writes the next number to two keys in one transaction, and erases and writes a third one, as
/// fast as the engine answers, on its own thread.
class Writer {
public:
    /// @param first  the first number
    explicit Writer(const std::string& endpoint, int first = 1)
        : number(first), thread([this, endpoint] {
              Client client(endpoint);
              while (!isOver)
                  write(client);
          }) {}
    ~Writer() { stop(); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void stop() {
        isOver = true;
        if (thread.joinable())
            thread.join();
    }

    /// After stop.
    /// @return the number that follows
    int next() const { return number; }

    /// Waits until so many more writes have succeeded.
    bool writesMore(int more) const {
        const int target = count + more;
        return eventually([&] { return count >= target; });
    }

private:
    void write(Client& client) {
        const std::string text = std::to_string(number);
        const std::optional<std::string> third =
            number % 2 == 0 ? std::optional<std::string>(text) : std::nullopt;
        // A write may take seconds on a busy machine.
        const auto revision = client.tryToWrite(
            {{prefix + "a", text}, {prefix + "b", text}, {prefix + "c", third}}, 5s);
        ++number;
        if (revision)
            ++count;
    }

    std::atomic<bool> isOver{false};
    std::atomic<int> count{0};
    int number;
    std::thread thread;
};

/// Checks each table of a source: a transaction is there as a whole, and no number goes back.
class Reader {
public:
    explicit Reader(EtcdSource& newSource) : source(newSource), thread([this] { sample(); }) {
        source.setWatcher([this](const std::string&) { check(); });
    }
    ~Reader() { stop(); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// Ends the checks.
    void stop() {
        isOver = true;
        if (!thread.joinable())
            return;
        thread.join();
        source.setWatcher({});
    }

    /// @return what was wrong first; empty: nothing
    std::string wrong() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return problem;
    }

private:
    void sample() {
        while (!isOver) {
            check();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    void check() {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto table = source.table();
        const std::string a = textIn(*table, "a");
        const std::string b = textIn(*table, "b");
        const std::string c = textIn(*table, "c");
        if (a == "(none)" && b == "(none)")
            return;
        if (a != b || (c != "(none)" && c != a))
            note("half of a transaction: " + a + ' ' + b + ' ' + c);
        else if (std::stoi(a) < last)
            note("back from " + std::to_string(last) + " to " + a);
        else
            last = std::stoi(a);
    }

    void note(const std::string& text) {
        if (problem.empty())
            problem = text;
    }

    EtcdSource& source;
    mutable std::mutex mutex;
    std::string problem;
    int last = 0;
    std::atomic<bool> isOver{false};
    std::thread thread;
};

/// Random moments that can be repeated.
class Moments {
public:
    explicit Moments(std::uint32_t newSeed = std::random_device()()) : random(newSeed) {
        testing::Test::RecordProperty("seed", std::to_string(newSeed));
        std::printf("seed %u\n", newSeed);
    }

    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

private:
    std::mt19937 random;
};

} // namespace test
