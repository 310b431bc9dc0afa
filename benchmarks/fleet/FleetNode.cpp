/// One part of a fleet, for measure.py. Every role prints a line when it is ready, and runs until
/// it is killed.
///
///     fleet-node put ENDPOINT PREFIX COUNT RATE SIZE
///         puts the option "clock" COUNT times, RATE times a second. A value is the time of the
///         clock that all processes share, in nanoseconds, a space, and SIZE letters. Then puts
///         "end". Prints "done P50 P99", the time until a put was answered, in nanoseconds
///     fleet-node watch ENDPOINT PREFIX COUNT
///         prints "current" when as many sources are. After "end" prints "told NUMBER P50 P99
///         LAST": how many times a source was told, and the delays. LAST is the delay after which
///         all sources knew a change, of the median change
///     fleet-node status ENDPOINT PREFIX
///         prints "stale NS LISTS FAILURE" and "current NS LISTS" when the state changes: the time,
///         and how many lists there were
///     fleet-node relay ENDPOINT PREFIX
///         serves the keys to HTTP clients. Prints "listening URL"
#include "../etcd/Server.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/service/HttpService.hpp>

#include <boost/variant/get.hpp>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {

using bench::etcd::now;
using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::etcd::EtcdSource;
using connector::etcd::Options;
using connector::etcd::Startup;

Options optionsOf(const std::string& endpoint, const std::string& prefix) {
    Options options;
    options.endpoints = {endpoint};
    options.prefix = prefix;
    options.startup = Startup::Wait(std::chrono::seconds(60));
    options.writeTimeout = std::chrono::seconds(30);
    return options;
}

/// @param times  not empty
std::int64_t quantile(std::vector<std::int64_t> times, std::size_t percent) {
    std::sort(times.begin(), times.end());
    return times[(times.size() - 1) * percent / 100];
}

// put

/// The source of the writer sees that key alone: "PREFIXc" and "lock".
void put(const std::string& endpoint, const std::string& prefix, int count, double rate,
         std::size_t size) {
    EtcdSource source(optionsOf(endpoint, prefix + 'c'));
    std::mutex mutex;
    std::vector<std::int64_t> times;
    const std::string letters = ' ' + std::string(size, 'x');
    auto next = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        const std::int64_t begin = now();
        source.put("lock", OptionValue(std::to_string(begin) + letters))
            .then([&, begin](connector::Future<std::int64_t>& revision) {
                revision.get();
                const std::lock_guard<std::mutex> lock(mutex);
                times.push_back(now() - begin);
            });
        next += std::chrono::nanoseconds(static_cast<std::int64_t>(1e9 / rate));
        std::this_thread::sleep_until(next);
    }
    source.put("lock", "end").get();
    const std::lock_guard<std::mutex> lock(mutex);
    std::cout << "done " << quantile(times, 50) << ' ' << quantile(times, 99) << std::endl;
}

// watch

/// The delays of many sources.
class Delays {
public:
    explicit Delays(int newSources) : pending(newSources) {}

    /// @param text  what a source was told
    void add(const std::string& text) {
        const std::int64_t time = now();
        const std::lock_guard<std::mutex> lock(mutex);
        if (text == "end") {
            --pending;
            changed.notify_all();
            return;
        }
        const std::int64_t begin = std::atoll(text.c_str());
        all.push_back(time - begin);
        std::int64_t& last = lasts[begin];
        last = std::max(last, time - begin);
    }

    void print() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return pending <= 0; });
        std::vector<std::int64_t> maxima;
        for (const auto& [begin, last] : lasts)
            maxima.push_back(last);
        std::cout << "told " << all.size() << ' ' << quantile(all, 50) << ' ' << quantile(all, 99)
                  << ' ' << quantile(maxima, 50) << std::endl;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int pending;
    std::vector<std::int64_t> all;
    std::map<std::int64_t, std::int64_t> lasts; // of each change
};

void watch(const Options& options, int count) {
    Delays delays(count);
    std::vector<std::shared_ptr<EtcdSource>> sources;
    for (int i = 0; i < count; ++i) {
        sources.push_back(std::make_shared<EtcdSource>(options));
        sources.back()->setWatcher(
            [source = sources.back().get(), &delays](const std::string& key) {
                if (key == "clock")
                    delays.add(boost::get<std::string>(source->table()->at(key)));
            });
    }
    std::cout << "current" << std::endl;
    delays.print();
    ::pause();
}

// status

void reportStatus(const Options& options) {
    EtcdSource source(options);
    source.onStatus(
        [last = connector::etcd::State::Starting](const connector::etcd::Status& status) mutable {
            if (std::exchange(last, status.state) == status.state)
                return;
            if (status.state == connector::etcd::State::Stale)
                std::cout << "stale " << now() << ' ' << status.lists << ' ' << status.failure
                          << std::endl;
            else
                std::cout << "current " << now() << ' ' << status.lists << std::endl;
        });
    ::pause();
}

// relay

void relay(const Options& options) {
    const auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->addSource("fleet", "", 60, true, std::make_shared<EtcdSource>(options)).get();
    connector::service::HttpOptions http;
    http.addresses.resize(1); // any free port of this machine
    connector::service::HttpService service(configuration, http);
    service.start();
    std::cout << "listening " << service.urls().front() << std::endl;
    ::pause();
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 6 && words[0] == "put")
        put(words[1], words[2], std::stoi(words[3]), std::stod(words[4]), std::stoul(words[5]));
    else if (words.size() == 4 && words[0] == "watch")
        watch(optionsOf(words[1], words[2]), std::stoi(words[3]));
    else if (words.size() == 3 && words[0] == "status")
        reportStatus(optionsOf(words[1], words[2]));
    else if (words.size() == 3 && words[0] == "relay")
        relay(optionsOf(words[1], words[2]));
    else
        return 2;
    return 0;
}
