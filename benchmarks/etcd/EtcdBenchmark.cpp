/// What a source over etcd costs, against a real server on the same machine.
#include "../Harness.hpp"
#include "Server.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace bench::etcd;
using connector::configuration::OptionValue;
using connector::etcd::EtcdSource;

/// Runs once, because each run takes its time.
/// @param run  the seconds that it took; nothing: it went wrong
void addTimed(const std::string& description, const std::string& contestant,
              const std::function<std::optional<double>()>& run) {
    bench::add("etcd", description, contestant,
               [run](benchmark::State& state) {
                   for (auto _ : state) {
                       const std::optional<double> seconds = run();
                       if (!seconds) {
                           state.SkipWithError("it went wrong");
                           return;
                       }
                       state.SetIterationTime(*seconds);
                   }
               })
        ->Iterations(1)
        ->UseManualTime();
}

double secondsSince(std::int64_t begin) {
    return static_cast<double>(now() - begin) / 1e9;
}

// From a put to another process

constexpr int putsPerSecond = 200;
constexpr int puts = 600;

/// The delays of two subscribers, in seconds, in the order of `Steady::Figure`
using Delays = std::array<double, 4>;

/// Puts the time, at a steady rate, then "end".
void putTimes(EtcdSource& writer) {
    std::vector<connector::Future<std::int64_t>> answers;
    auto next = std::chrono::steady_clock::now();
    for (int i = 0; i < puts; ++i) {
        next += std::chrono::microseconds(1'000'000 / putsPerSecond);
        std::this_thread::sleep_until(next);
        answers.push_back(writer.put("lock", OptionValue(std::to_string(now()))));
    }
    for (auto& answer : answers)
        answer.get();
    writer.put("lock", "end").get();
}

/// @return the delays of the values that etcdctl prints, in nanoseconds, in ascending order
std::vector<std::int64_t> delaysOf(Program& etcdctl) {
    const auto value = [&etcdctl] {
        etcdctl.line(); // PUT
        etcdctl.line(); // the key
        return etcdctl.line();
    };
    std::vector<std::int64_t> delays;
    for (std::string text = value(); text != "end"; text = value()) {
        if (text != "begin")
            delays.push_back(now() - std::stoll(text));
    }
    std::sort(delays.begin(), delays.end());
    return delays;
}

/// One server, one writer, and both contestants beside each other: what disturbs the server or the
/// machine disturbs both.
Delays measureDelays(int keys) {
    const Server server;
    server.fill("fleet/", keys);
    EtcdSource writer(server.options("fleet/c")); // sees the key "fleet/clock" alone
    writer.put("lock", "begin").get();
    Program ours(follower({"delays", server.endpoint(), "fleet/"}));
    ours.line(); // "current"
    Program etcdctl({"etcdctl", "--endpoints=" + server.endpoint(), "watch", "--prefix", "fleet/"});
    // It does not say when it watches.
    std::thread putting([&writer] {
        for (int i = 0; i < 20; ++i) {
            writer.put("lock", "begin").get();
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        putTimes(writer);
    });
    const std::vector<std::int64_t> others = delaysOf(etcdctl);
    putting.join();
    const double half = std::stod(ours.line()) / 1e9;
    const double most = std::stod(ours.line()) / 1e9;
    return {half, most, static_cast<double>(others.at(others.size() / 2)) / 1e9,
            static_cast<double>(others.at(others.size() * 99 / 100)) / 1e9};
}

/// One measurement gives the figures of four cases. The nth run of each case shows the nth one.
class Steady {
public:
    enum Figure : std::uint8_t { OurHalf, OurMost, HalfOfEtcdctl, MostOfEtcdctl };

    explicit Steady(int newKeys) : keys(newKeys) {}

    double take(Figure figure) {
        const std::size_t run = taken.at(figure)++;
        if (run == measured.size())
            measured.push_back(measureDelays(keys));
        return measured[run].at(figure);
    }

private:
    const int keys;
    std::vector<Delays> measured;
    std::array<std::size_t, 4> taken{};
};

/// @param keys  in the table beside the one that changes
void addSteady(int keys) {
    const std::string description =
        "from a put to a subscriber, 200 puts a second, " + std::to_string(keys) + " keys, ";
    const auto steady = std::make_shared<Steady>(keys);
    const auto add = [&](const std::string& part, const std::string& contestant,
                         Steady::Figure figure) {
        addTimed(description + part, contestant, [steady, figure] { return steady->take(figure); });
    };
    add("p50", "ours", Steady::OurHalf);
    add("p50", "etcdctl", Steady::HalfOfEtcdctl);
    add("p99", "ours", Steady::OurMost);
    add("p99", "etcdctl", Steady::MostOfEtcdctl);
}

// A list

constexpr int listedKeys = 100'000;

const Server& filledServer() {
    static const Server server;
    static const bool isFilled = [] {
        server.fill("list/", listedKeys);
        return true;
    }();
    static_cast<void>(isFilled);
    return server;
}

std::optional<double> listOfOurs() {
    const Server& server = filledServer();
    const std::int64_t begin = now();
    const EtcdSource source(server.options("list/"));
    const double seconds = secondsSince(begin);
    return source.table()->size() == listedKeys ? std::optional<double>(seconds) : std::nullopt;
}

std::optional<double> listOfEtcdctl() {
    const Server& server = filledServer();
    const std::int64_t begin = now();
    Program program({"etcdctl", "--endpoints=" + server.endpoint(), "get", "--prefix", "list/"});
    return program.drain() > listedKeys ? std::optional<double>(secondsSince(begin)) : std::nullopt;
}

void measureMemory(benchmark::State& state) {
    for (auto _ : state) {
        Program program(follower({"memory", filledServer().endpoint(), "list/"}));
        state.counters["bytes"] = std::stod(program.line());
    }
}

// Many sources

class Fleet {
public:
    Fleet(const Server& server, int processes, int sources, const std::string& cache = "") {
        for (int i = 0; i < processes; ++i) {
            std::vector<std::string> arguments = {"many", server.endpoint(), "fleet/",
                                                  std::to_string(sources / processes)};
            if (!cache.empty())
                arguments.push_back(cache + std::to_string(i));
            programs.push_back(std::make_unique<Program>(follower(arguments)));
        }
    }

    /// Waits until every process has printed a line that begins with this word.
    /// @return the sum of the numbers behind it
    int wait(const std::string& word) {
        int sum = 0;
        for (const auto& program : programs) {
            std::string line = program->line();
            while (!line.empty() && line.compare(0, word.size(), word) != 0)
                line = program->line();
            if (line.size() > word.size())
                sum += std::stoi(line.substr(word.size()));
        }
        return sum;
    }

private:
    std::vector<std::unique_ptr<Program>> programs;
};

std::optional<double> restart() {
    Server server;
    server.fill("fleet/", 1'000);
    Fleet fleet(server, 10, 500);
    const int lists = fleet.wait("current");
    server.kill();
    const std::int64_t begin = now();
    server.start();
    const int listsAfter = fleet.wait("current");
    return lists == listsAfter ? std::optional<double>(secondsSince(begin)) : std::nullopt;
}

std::optional<double> cachedStarts() {
    const Server server;
    server.fill("fleet/", 1'000);
    std::string folder = (std::filesystem::temp_directory_path() / "etcd-cache-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr)
        return std::nullopt;
    for (int i = 0; i < 50; ++i) {
        connector::etcd::Options options = server.options("fleet/");
        options.cacheFile = folder + "/cache0." + std::to_string(i);
        const EtcdSource source(options);
    }
    const std::int64_t begin = now();
    Fleet fleet(server, 1, 50, folder + "/cache");
    const int lists = fleet.wait("current");
    const double seconds = secondsSince(begin);
    std::filesystem::remove_all(folder);
    return lists == 0 ? std::optional<double>(seconds) : std::nullopt;
}

std::optional<double> fanOut() {
    const Server server;
    server.fill("fleet/", 100);
    EtcdSource writer(server.options("fleet/"));
    Fleet fleet(server, 10, 1'000);
    fleet.wait("current");
    const std::int64_t begin = now();
    writer.put("signal", OptionValue(std::to_string(begin))).get();
    fleet.wait("told");
    return secondsSince(begin);
}

[[maybe_unused]] const bool registered = [] {
    for (const int keys : {10, 10'000, 100'000})
        addSteady(keys);
    addTimed("first list, 100000 keys", "ours", listOfOurs);
    addTimed("first list, 100000 keys", "etcdctl", listOfEtcdctl);
    bench::add("etcd memory", "100000 keys, kept", "ours", measureMemory)->Iterations(1);
    addTimed("all current after a restart, 500 sources, 500000 options", "ours", restart);
    addTimed("all current, 50 starts with cache files", "ours", cachedStarts);
    addTimed("all told of a change, 1000 sources, 100000 options", "ours", fanOut);
    return true;
}();

} // namespace
