/// What live options and handlers cost.
#include "../Harness.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/LiveOption.hpp>
#include <connector/configuration/typed/OptionWatch.hpp>

#include <atomic>
#include <limits>
#include <memory>
#include <mutex>
#include <string>

namespace {

using namespace connector::configuration;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;

std::shared_ptr<ConfigurationImpl> withOption(OptionValue value) {
    auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->set("net.port", std::move(value)).get();
    return configuration;
}

/// Made once: the threads of one benchmark share it.
template <typename T>
const LiveOption<T>& live(const OptionValue& value) {
    static const auto configuration = withOption(value);
    static const LiveOption<T> option(configuration, "net.port");
    return option;
}

void getLive(benchmark::State& state) {
    const LiveOption<int>& option = live<int>(8080);
    for (auto _ : state) {
        int value = option.get();
        benchmark::DoNotOptimize(value);
    }
}

/// The pointer is read each time, as that of a live option is, and as that of a member would be.
void loadAtomic(benchmark::State& state) {
    static auto atomic = std::make_unique<std::atomic<int>>(8080);
    for (auto _ : state) {
        int value = atomic->load(std::memory_order_acquire);
        benchmark::DoNotOptimize(value);
    }
}

void takeSnapshot(benchmark::State& state) {
    const auto& option = live<std::string>(std::string("a text of more than fifteen bytes"));
    for (auto _ : state)
        benchmark::DoNotOptimize(option.snapshot());
}

void copyUnderMutex(benchmark::State& state) {
    std::mutex mutex;
    const auto text = std::make_shared<const std::string>("a text of more than fifteen bytes");
    const auto copy = [&mutex, &text] {
        const std::lock_guard<std::mutex> lock(mutex);
        return text;
    };
    for (auto _ : state)
        benchmark::DoNotOptimize(copy());
}

/// Changes an option with one listener, which keeps the newest value.
template <typename Listen>
void set(benchmark::State& state, Listen listen) {
    const auto configuration = withOption(0);
    int newest = -1;
    const auto listening = listen(configuration, newest);
    int value = 0;
    for (auto _ : state)
        configuration->set("net.port", ++value).get();
    if (newest != value)
        state.SkipWithError("the listener missed the last value");
}

class Plain : public Subscriber<OptionValue> {
public:
    explicit Plain(int& newPlace) : place(newPlace) {}
    void onSubscribe(std::weak_ptr<Subscription> subscription) override {
        subscription.lock()->request(std::numeric_limits<std::uint64_t>::max());
    }
    void onComplete() override {}
    void onNext(const OptionValue& value) override { place = boost::get<int>(value); }
    void onError(std::exception_ptr) override {}

private:
    int& place;
};

void setWithHandler(benchmark::State& state) {
    set(state, [](const auto& configuration, int& place) {
        return onChange<int>(configuration, "net.port", [&place](int value) { place = value; });
    });
}

void setWithSubscriber(benchmark::State& state) {
    set(state, [](const auto& configuration, int& place) {
        const auto subscriber = std::make_shared<Plain>(place);
        configuration->watchOption("net.port")->subscribe(subscriber);
        return subscriber;
    });
}

[[maybe_unused]] const bool registered = [] {
    bench::add("typed", "LiveOption, get", "ours", getLive);
    bench::add("typed", "LiveOption, get", "atomic", loadAtomic);
    // The time is that of one get: half of what it takes on one thread would be the best.
    bench::add("typed", "LiveOption, get on threads", "ours", getLive)->Threads(2)->UseRealTime();
    bench::add("typed", "LiveOption, get on threads", "one thread", getLive)->UseRealTime();
    bench::add("typed", "LiveOption, snapshot", "ours", takeSnapshot);
    bench::add("typed", "LiveOption, snapshot", "mutex", copyUnderMutex);
    bench::add("typed", "set, one listener", "ours", setWithHandler);
    bench::add("typed", "set, one listener", "subscriber", setWithSubscriber);
    return true;
}();

} // namespace
