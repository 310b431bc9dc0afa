/// Futures whose memory is allocated before their value is known. Replaces operator new.
#include <connector/async/detail/ReservedFuture.hpp>

#include <connector/configuration/Option.hpp>

#include "support/AllocationCount.hpp"
#include "support/AllocationFailure.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace connector::detail {

using configuration::Option;
using configuration::OptionValue;

namespace {

const std::string longText(1000, 'x');

/// Knows how many of its kind there are.
struct Counted {
    Counted() { ++alive; }
    Counted(const Counted&) { ++alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --alive; }

    static inline int alive = 0;
};

template <typename T>
T readBack(T value) {
    return ReservedFuture<T>().resolve(std::move(value)).get();
}

} // namespace

TEST(ReservedFuture, ReservingAllocatesAsMuchAsAReadyFuture) {
    const std::size_t atStart = test::allocationCount();
    std::optional<ReservedFuture<OptionValue>> reserved;
    reserved.emplace();
    const std::size_t afterReserving = test::allocationCount();
    Future<OptionValue> ready = makeReadyFuture(OptionValue(1));
    const std::size_t afterMaking = test::allocationCount();

    EXPECT_EQ(afterMaking - afterReserving, afterReserving - atStart);
    EXPECT_TRUE(ready.valid());
}

TEST(ReservedFuture, ResolvingAllocatesNothing) {
    OptionValue value(longText);
    ReservedFuture<OptionValue> reserved;
    const std::size_t before = test::allocationCount();
    Future<OptionValue> future = std::move(reserved).resolve(std::move(value));
    EXPECT_EQ(before, test::allocationCount());
    EXPECT_TRUE(OptionValue(longText) == future.get());
}

TEST(ReservedFuture, ReservingFailsWithoutLeaks) {
    const auto makeNothing = [] { return std::optional<ReservedFuture<OptionValue>>(); };
    const std::size_t failures = test::failEveryAllocation(
        makeNothing, [](auto& reserved) { reserved.emplace(); },
        [](auto& reserved) { EXPECT_FALSE(reserved.has_value()); },
        [](auto& reserved) {
            EXPECT_TRUE(OptionValue(2) == std::move(*reserved).resolve(OptionValue(2)).get());
        });
    EXPECT_EQ(2u, failures);
}

TEST(ReservedFuture, TheResultIsDestroyedWithTheFuture) {
    { const ReservedFuture<Counted> unused; }
    EXPECT_EQ(0, Counted::alive);
    ReservedFuture<Counted>().resolve(Counted()).get();
    EXPECT_EQ(0, Counted::alive);
}

TEST(ReservedFuture, TheValueIsReadBack) {
    EXPECT_TRUE(readBack(true));
    EXPECT_FALSE(readBack(false));
    EXPECT_TRUE(OptionValue(longText) == readBack(OptionValue(longText)));
    const Option option = readBack(Option{"key", "source", OptionValue(1.5)});
    EXPECT_EQ("key", option.key);
    EXPECT_EQ("source", option.source);
    EXPECT_TRUE(OptionValue(1.5) == option.value);
}

TEST(ReservedFuture, AMoveOnlyValueIsMoved) {
    auto number = std::make_unique<int>(7);
    const int* const address = number.get();
    EXPECT_EQ(address, readBack(std::move(number)).get());
}

TEST(ReservedFuture, TheValueIsReadOnce) {
    Future<bool> future = ReservedFuture<bool>().resolve(true);
    EXPECT_TRUE(future.valid());
    EXPECT_TRUE(future.get());
    test::expectThrows<std::runtime_error>(
        "Future already returned it's value or has an associated continuation.",
        [&] { future.get(); });
}

TEST(ReservedFuture, AContinuationRunsAtOnce) {
    Future<std::string> future = ReservedFuture<std::string>().resolve("text");
    std::string read;
    future.then([&](Future<std::string>& resolved) { read = resolved.get(); });
    EXPECT_EQ("text", read);
}

} // namespace connector::detail
