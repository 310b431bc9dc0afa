/// What a source over etcd costs, against a real server on the same machine.
#include "../Harness.hpp"
#include "Server.hpp"

#include <algorithm>
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

/// Puts the time, at a steady rate, then "end".
void putTimes(EtcdSource& writer) {
    std::vector<connector::Future<std::int64_t>> answers;
    auto next = std::chrono::steady_clock::now();
    for (int i = 0; i < puts; ++i) {
        next += std::chrono::microseconds(1'000'000 / putsPerSecond);
        std::this_thread::sleep_until(next);
        answers.push_back(writer.put("clock", OptionValue(std::to_string(now()))));
    }
    for (auto& answer : answers)
        answer.get();
    writer.put("clock", "end").get();
}

struct Delays {
    double half;
    double most;
};

Delays delaysOfOurs() {
    const Server server;
    EtcdSource writer(server.options("fleet/"));
    writer.put("clock", "begin").get();
    Program program(follower({"delays", server.endpoint(), "fleet/"}));
    program.line(); // "current"
    putTimes(writer);
    const double half = std::stod(program.line()) / 1e9;
    return {half, std::stod(program.line()) / 1e9};
}

Delays delaysOfEtcdctl() {
    const Server server;
    EtcdSource writer(server.options("fleet/"));
    Program program({"etcdctl", "--endpoints=" + server.endpoint(), "watch", "--prefix", "fleet/"});
    const auto value = [&program] {
        program.line(); // PUT
        program.line(); // the key
        return program.line();
    };
    // It does not say when it watches.
    std::thread asking([&writer] {
        for (int i = 0; i < 20; ++i) {
            writer.put("clock", "begin").get();
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        putTimes(writer);
    });
    std::vector<std::int64_t> delays;
    for (std::string text = value(); text != "end"; text = value()) {
        if (text != "begin")
            delays.push_back(now() - std::stoll(text));
    }
    asking.join();
    std::sort(delays.begin(), delays.end());
    return {static_cast<double>(delays.at(delays.size() / 2)) / 1e9,
            static_cast<double>(delays.at(delays.size() * 99 / 100)) / 1e9};
}

/// Measures both figures at once, although they are two cases.
class Both {
public:
    explicit Both(Delays (*newMeasure)()) : measure(newMeasure) {}

    double take(double Delays::*wanted) {
        std::optional<double>& kept = wanted == &Delays::half ? half : most;
        if (!kept) {
            const Delays delays = measure();
            half = delays.half;
            most = delays.most;
        }
        const double figure = *kept;
        kept.reset();
        return figure;
    }

private:
    Delays (*const measure)();
    std::optional<double> half;
    std::optional<double> most;
};

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
    const std::string rate = "from a put to a subscriber, 200 puts a second, ";
    static Both ours(delaysOfOurs);
    static Both etcdctl(delaysOfEtcdctl);
    addTimed(rate + "p50", "ours", [] { return ours.take(&Delays::half); });
    addTimed(rate + "p50", "etcdctl", [] { return etcdctl.take(&Delays::half); });
    addTimed(rate + "p99", "ours", [] { return ours.take(&Delays::most); });
    addTimed(rate + "p99", "etcdctl", [] { return etcdctl.take(&Delays::most); });
    addTimed("first list, 100000 keys", "ours", listOfOurs);
    addTimed("first list, 100000 keys", "etcdctl", listOfEtcdctl);
    bench::add("etcd memory", "100000 keys, kept", "ours", measureMemory)->Iterations(1);
    addTimed("all current after a restart, 500 sources, 500000 options", "ours", restart);
    addTimed("all current, 50 starts with cache files", "ours", cachedStarts);
    addTimed("all told of a change, 1000 sources, 100000 options", "ours", fanOut);
    return true;
}();

} // namespace
