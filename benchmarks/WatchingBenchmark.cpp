/// What watching costs: a change of a key must cost that key's own watchers, however many streams
/// follow other keys.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <benchmark/benchmark.h>

#include <limits>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using connector::configuration::Configuration;
using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;

/// Takes every value at once and counts them.
class Counter : public Subscriber<OptionValue> {
public:
    void onSubscribe(std::weak_ptr<Subscription> subscription) override {
        subscription.lock()->request(std::numeric_limits<std::uint64_t>::max());
    }
    void onComplete() override {}
    void onNext(const OptionValue&) override { ++count; }
    void onError(std::exception_ptr) override {}

    std::int64_t count = 0;
};

std::string otherKey(std::int64_t index) {
    return "other.key." + std::to_string(index);
}

/// A configuration with `others` streams, each on a key of its own and with a subscriber.
struct Watched {
    explicit Watched(std::int64_t others) {
        for (std::int64_t i = 0; i < others; ++i)
            watch(otherKey(i));
    }

    std::shared_ptr<Counter> watch(const std::string& key) {
        auto counter = std::make_shared<Counter>();
        configuration->watchOption(key)->subscribe(counter);
        return counter;
    }

    std::shared_ptr<Configuration> configuration = std::make_shared<ConfigurationImpl>();
};

/// One option is set again and again; it has one watcher.
void BM_Watching_Set_OneWatcher(benchmark::State& state) {
    Watched watched(state.range(0));
    const auto counter = watched.watch("net.port");
    int value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(watched.configuration->set("net.port", ++value).get());
    if (counter->count != value)
        state.SkipWithError("the watcher missed a value");
}
BENCHMARK(BM_Watching_Set_OneWatcher)
    ->ArgName("otherStreams")
    ->Arg(0)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000);

/// One option is set again and again; it has many watchers.
void BM_Watching_Set_ManyWatchers(benchmark::State& state) {
    Watched watched(0);
    std::vector<std::shared_ptr<Counter>> counters;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        counters.push_back(watched.watch("net.port"));
    int value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(watched.configuration->set("net.port", ++value).get());
    for (const auto& counter : counters)
        if (counter->count != value)
            state.SkipWithError("a watcher missed a value");
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_Watching_Set_ManyWatchers)
    ->ArgName("watchers")
    ->RangeMultiplier(4)
    ->Range(1, 4096)
    ->Complexity();

/// A source is added beside as many streams as it has keys, and removed again, untimed.
void addSourceBesideStreams(benchmark::State& state, const std::string& prefix) {
    Watched watched(state.range(0));
    std::unordered_map<std::string, OptionValue> values;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        values.emplace(prefix + otherKey(i), static_cast<int>(i));
    for (auto _ : state) {
        auto copy = values;
        if (!watched.configuration->addInMemorySource("added", "", 5, true, std::move(copy)).get())
            state.SkipWithError("the source was not added");
        state.PauseTiming();
        watched.configuration->removeSource("added").get();
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

void BM_Watching_AddSource_NobodyWatchesItsKeys(benchmark::State& state) {
    addSourceBesideStreams(state, "unwatched.");
}
BENCHMARK(BM_Watching_AddSource_NobodyWatchesItsKeys)
    ->ArgName("keysAndStreams")
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Complexity();

void BM_Watching_AddSource_EveryKeyIsWatched(benchmark::State& state) {
    addSourceBesideStreams(state, "");
}
BENCHMARK(BM_Watching_AddSource_EveryKeyIsWatched)
    ->ArgName("keysAndStreams")
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Complexity();

/// Streams end one after the other, the oldest first.
void BM_Watching_Cancel_EveryStream(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        const auto configuration = std::make_shared<ConfigurationImpl>();
        for (std::int64_t i = 0; i < state.range(0); ++i)
            configuration->watchOption("net.port");
        state.ResumeTiming();
        for (std::int64_t i = 0; i < state.range(0); ++i)
            configuration->removeStream(static_cast<std::uint64_t>(i));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_Watching_Cancel_EveryStream)
    ->ArgName("streams")
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Complexity();

} // namespace
