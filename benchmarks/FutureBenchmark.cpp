/// What a result costs that is known already: to make it and to take it.
#include <connector/configuration/Configuration.hpp>

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <string>

namespace {

using connector::configuration::OptionValue;

/// The floor: a state and a cell, allocated apart, a lock taken once, and nothing else.
struct HandMadeState {
    ~HandMadeState() { delete cell; }

    std::mutex mutex;
    std::condition_variable condition;
    OptionValue* cell = nullptr;
    bool taken = false;
};

class HandMadeFuture {
public:
    explicit HandMadeFuture(OptionValue value) : state(std::make_shared<HandMadeState>()) {
        state->cell = new OptionValue(std::move(value));
    }
    OptionValue get() {
        const std::lock_guard<std::mutex> lock(state->mutex);
        state->taken = true;
        return std::move(*state->cell);
    }

private:
    std::shared_ptr<HandMadeState> state;
};

OptionValue valueOfLength(std::int64_t length) {
    if (length == 0)
        return 8080;
    return std::string(static_cast<std::size_t>(length), 'x');
}

template <typename MakeAndTake>
void measure(benchmark::State& state, MakeAndTake makeAndTake) {
    const OptionValue value = valueOfLength(state.range(0));
    for (auto _ : state) {
        const OptionValue taken = makeAndTake(value);
        if (taken.which() != value.which())
            state.SkipWithError("another value came out");
    }
}

void BM_Future_ReadyAndTaken_Floor(benchmark::State& state) {
    measure(state, [](const OptionValue& value) { return HandMadeFuture(value).get(); });
}
void BM_Future_ReadyAndTaken_Ours(benchmark::State& state) {
    measure(state,
            [](const OptionValue& value) { return connector::makeReadyFuture(value).get(); });
}
void BM_Future_ReadyAndTaken_StdPromise(benchmark::State& state) {
    measure(state, [](const OptionValue& value) {
        std::promise<OptionValue> promise;
        promise.set_value(value);
        return promise.get_future().get();
    });
}

BENCHMARK(BM_Future_ReadyAndTaken_Floor)->ArgName("bytes")->Arg(0)->Arg(12)->Arg(40);
BENCHMARK(BM_Future_ReadyAndTaken_Ours)->ArgName("bytes")->Arg(0)->Arg(12)->Arg(40);
BENCHMARK(BM_Future_ReadyAndTaken_StdPromise)->ArgName("bytes")->Arg(0)->Arg(12)->Arg(40);

} // namespace
