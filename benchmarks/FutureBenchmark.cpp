/// The cost of a future whose value is known already: to create it and to take its value.
#include "HandMadeFuture.hpp"
#include "Harness.hpp"

#include <connector/async/Future.hpp>

#include <boost/variant/get.hpp>

#include <future>
#include <string>

namespace {

using connector::configuration::OptionValue;

OptionValue floor(const OptionValue& value) {
    return bench::HandMadeFuture(value).get();
}

OptionValue ours(const OptionValue& value) {
    return connector::makeReadyFuture(value).get();
}

OptionValue stdPromise(const OptionValue& value) {
    std::promise<OptionValue> promise;
    promise.set_value(value);
    return promise.get_future().get();
}

/// @param T  the alternative that `value` holds
template <typename T>
void addCase(const std::string& kind, const T& value) {
    const auto add = [&](const std::string& contestant,
                         OptionValue (*makeAndTake)(const OptionValue&)) {
        bench::add("futures", "ready and taken, " + kind, contestant,
                   [makeAndTake, value](benchmark::State& state) {
                       const OptionValue original = value;
                       bool isRight = true;
                       for (auto _ : state)
                           isRight &= boost::get<T>(makeAndTake(original)) == value;
                       if (!isRight)
                           state.SkipWithError("the future returned a wrong value");
                   });
    };
    add("ours", ours);
    add("floor", floor);
    add("std::promise", stdPromise);
}

[[maybe_unused]] const bool registered = [] {
    addCase("int", 8080);
    addCase("12 bytes", bench::textNumber(7, 12));
    addCase("40 bytes", bench::textNumber(7, 40));
    return true;
}();

} // namespace
