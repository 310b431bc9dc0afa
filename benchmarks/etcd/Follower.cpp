/// A process with sources, for the benchmarks.
///
///     etcd-follower delays ENDPOINT PREFIX
///         follows the option "clock" through a configuration. Its values are times of the clock
///         that all processes share; at the value "end" prints the delay in nanoseconds that half
///         of them, then the one that 99 % of them, did not exceed, a line each
///     etcd-follower many ENDPOINT PREFIX COUNT [CACHE]
///         makes sources, with cache files if CACHE names one. Prints "current N" whenever all have
///         become current, N being the lists so far, and "told" whenever all have been told a
///         change of the option "signal"
///     etcd-follower memory ENDPOINT PREFIX
///         prints the bytes of the heap that a source keeps for each key, beside keys and values
#include "Server.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <boost/variant/get.hpp>

#include <algorithm>
#include <atomic>
#include <future>
#include <iostream>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <malloc.h>
#include <unistd.h>

namespace {

using namespace bench::etcd;
using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::etcd::EtcdSource;
using connector::etcd::Options;
using connector::etcd::Startup;
using connector::etcd::State;
using connector::etcd::Status;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;

Options optionsOf(const std::string& endpoint, const std::string& prefix) {
    Options options;
    options.endpoints = {endpoint};
    options.prefix = prefix;
    options.startup = Startup::Wait(std::chrono::seconds(60));
    return options;
}

class Delays : public Subscriber<OptionValue> {
public:
    void onSubscribe(std::weak_ptr<Subscription> subscription) override {
        subscription.lock()->request(std::numeric_limits<std::uint64_t>::max());
    }
    void onNext(const OptionValue& value) override {
        const std::int64_t time = now();
        const std::string& text = boost::get<std::string>(value);
        if (text == "end")
            over.set_value();
        else if (text != "begin")
            delays.push_back(time - std::stoll(text));
    }
    void onComplete() override {}
    void onError(std::exception_ptr) override {}

    void print() {
        over.get_future().wait();
        std::sort(delays.begin(), delays.end());
        std::cout << delays.at(delays.size() / 2) << '\n'
                  << delays.at(delays.size() * 99 / 100) << std::endl;
    }

private:
    std::vector<std::int64_t> delays;
    std::promise<void> over;
};

void printDelays(const Options& options) {
    const auto source = std::make_shared<EtcdSource>(options);
    const auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->addSource("fleet", "", 60, true, source).get();
    const auto stream = configuration->watchOption("clock");
    const auto delays = std::make_shared<Delays>();
    stream->subscribe(delays);
    std::cout << "current" << std::endl;
    delays->print();
}

/// Counts how many sources are in a state that all are to reach.
class Together {
public:
    explicit Together(int newCount) : count(newCount) {}

    /// @return whether this was the last one
    bool enter() { return ++reached % count == 0; }
    void leave() { --reached; }

private:
    const int count;
    std::atomic<int> reached{0};
};

void followMany(const Options& base, int count, const std::string& cache) {
    std::vector<std::shared_ptr<EtcdSource>> sources(static_cast<std::size_t>(count));
    Together current(count);
    Together told(count);
    std::mutex mutex;
    const auto reportCurrent = [&] {
        std::uint64_t lists = 0;
        for (const auto& source : sources)
            lists += source->status().lists;
        const std::lock_guard<std::mutex> lock(mutex);
        std::cout << "current " << lists << std::endl;
    };
    for (std::size_t i = 0; i < sources.size(); ++i) {
        Options options = base;
        options.startup = cache.empty() ? Startup::Empty() : Startup::Cached();
        if (!cache.empty())
            options.cacheFile = cache + '.' + std::to_string(i);
        sources[i] = std::make_shared<EtcdSource>(options);
    }
    for (const auto& source : sources) {
        source->setWatcher([&](const std::string& key) {
            if (key == "signal" && told.enter()) {
                const std::lock_guard<std::mutex> lock(mutex);
                std::cout << "told" << std::endl;
            }
        });
        source->onStatus([&, wasCurrent = false](const Status& status) mutable {
            const bool isCurrent = status.state == State::Current;
            if (isCurrent && !wasCurrent && current.enter())
                reportCurrent();
            else if (!isCurrent && wasCurrent)
                current.leave();
            wasCurrent = isCurrent;
        });
    }
    ::pause(); // until it is killed
}

void printMemory(const Options& options) {
    Options none = options;
    none.prefix = "none/";
    const EtcdSource warm(none); // what is allocated only once is not counted
    const auto used = [] {
        const struct mallinfo2 info = ::mallinfo2();
        return static_cast<std::int64_t>(info.uordblks + info.hblkhd);
    };
    const std::int64_t before = used();
    const EtcdSource source(options);
    const std::int64_t after = used();
    std::int64_t content = 0;
    const auto table = source.table();
    for (const auto& [key, value] : *table)
        content += static_cast<std::int64_t>(key.size() + boost::get<std::string>(value).size());
    std::cout << (after - before - content) / static_cast<std::int64_t>(table->size()) << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() < 3)
        return 2;
    const Options options = optionsOf(arguments[1], arguments[2]);
    if (arguments[0] == "delays")
        printDelays(options);
    else if (arguments[0] == "many" && arguments.size() > 3)
        followMany(options, std::stoi(arguments[3]), arguments.size() > 4 ? arguments[4] : "");
    else if (arguments[0] == "memory")
        printMemory(options);
    else
        return 2;
    return 0;
}
