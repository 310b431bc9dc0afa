/// The minimal future: its documented behaviour needs a shared state, a separately allocated value
/// and a lock.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

namespace bench {

class HandMadeFuture {
public:
    using OptionValue = connector::configuration::OptionValue;

    explicit HandMadeFuture(const OptionValue& value) : state(std::make_shared<State>()) {
        state->cell = std::make_unique<OptionValue>(value);
    }

    OptionValue get() {
        const std::lock_guard<std::mutex> lock(state->mutex);
        return std::move(*state->cell);
    }

private:
    struct State {
        std::mutex mutex;
        std::condition_variable condition;
        std::unique_ptr<OptionValue> cell;
    };
    std::shared_ptr<State> state;
};

} // namespace bench
