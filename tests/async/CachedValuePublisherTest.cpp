/// Which values are kept, dropped and delivered, and when.
#include <connector/async/CachedValuePublisher.hpp>

#include "async/Stream.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace connector::reactive_streams {

using test::Events;
using test::SubscribedStream;

namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

Events deliveries(std::initializer_list<int> values) {
    Events events;
    for (const int value : values)
        events.push_back("onNext " + std::to_string(value));
    return events;
}

} // namespace

TEST(CachedValuePublisher, NothingIsDeliveredWithoutDemand) {
    SubscribedStream stream;
    stream.offer({1, 2});
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisher, DemandAloneDeliversNothing) {
    SubscribedStream stream;
    stream.request(5);
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisher, CapacityOneKeepsTheNewestValueAndTheRemainingDemand) {
    SubscribedStream stream(1);
    stream.offer({1, 2, 3});
    stream.request(10);
    EXPECT_EQ(deliveries({3}), stream.take());
    EXPECT_EQ(9u, test::demandOf(*stream.publisher));
    stream.offer({4});
    EXPECT_EQ(deliveries({4}), stream.take());
    EXPECT_EQ(8u, test::demandOf(*stream.publisher));
}

TEST(CachedValuePublisher, TheNewestValuesAreKeptInOrder) {
    SubscribedStream stream(3);
    stream.offer({1, 2, 3, 4, 5});
    stream.request(10);
    EXPECT_EQ(deliveries({3, 4, 5}), stream.take());
}

TEST(CachedValuePublisher, NothingIsDroppedUpToTheCapacity) {
    SubscribedStream stream(3);
    stream.offer({1, 2, 3});
    stream.request(10);
    EXPECT_EQ(deliveries({1, 2, 3}), stream.take());
}

TEST(CachedValuePublisher, ADeliveryFreesCapacity) {
    SubscribedStream stream(2);
    stream.offer({1, 2});
    stream.request(1);
    stream.offer({3});
    stream.request(2);
    EXPECT_EQ(deliveries({1, 2, 3}), stream.take());
}

TEST(CachedValuePublisher, CapacityZeroKeepsOneValue) {
    SubscribedStream stream(0);
    stream.offer({1, 2, 3});
    stream.request(10);
    EXPECT_EQ(deliveries({3}), stream.take());
}

TEST(CachedValuePublisher, ANegativeCapacityKeepsEverything) {
    for (const int capacity : {-1, std::numeric_limits<int>::min()}) {
        SubscribedStream stream(capacity);
        Events expected;
        for (int value = 0; value < 1000; ++value) {
            stream.offer({value});
            expected.push_back("onNext " + std::to_string(value));
        }
        stream.request(unlimited);
        EXPECT_EQ(expected, stream.take());
    }
}

TEST(CachedValuePublisher, ALargeCapacityReservesNoMemory) {
    SubscribedStream stream(std::numeric_limits<int>::max());
    stream.offer({1, 2});
    stream.request(2);
    EXPECT_EQ(deliveries({1, 2}), stream.take());
}

TEST(CachedValuePublisher, NeverMoreIsDeliveredThanWasRequested) {
    SubscribedStream stream(-1);
    stream.offer({1, 2, 3});
    stream.request(2);
    EXPECT_EQ(deliveries({1, 2}), stream.take());
    stream.request(1);
    EXPECT_EQ(deliveries({3}), stream.take());
    stream.offer({4});
    EXPECT_EQ(Events(), stream.take());
}

TEST(CachedValuePublisher, DemandAddsUp) {
    SubscribedStream stream(-1);
    stream.request(1);
    stream.request(2);
    stream.offer({1, 2, 3, 4});
    EXPECT_EQ(deliveries({1, 2, 3}), stream.take());
}

TEST(CachedValuePublisher, ARequestOfZeroChangesNothing) {
    SubscribedStream stream;
    stream.offer({1});
    stream.request(0);
    EXPECT_EQ(Events(), stream.take());
    EXPECT_EQ(0u, test::demandOf(*stream.publisher));
    stream.request(1);
    EXPECT_EQ(deliveries({1}), stream.take());
}

TEST(CachedValuePublisher, DemandSaturates) {
    for (const std::uint64_t more :
         {std::uint64_t(1), std::uint64_t(2), unlimited - 1, unlimited}) {
        SubscribedStream stream;
        stream.request(unlimited);
        stream.request(more);
        EXPECT_EQ(unlimited, test::demandOf(*stream.publisher)) << more;
    }
}

TEST(CachedValuePublisher, DemandReachesTheLargestNumberExactly) {
    SubscribedStream stream;
    stream.request(unlimited - 1);
    EXPECT_EQ(unlimited - 1, test::demandOf(*stream.publisher));
    stream.request(1);
    EXPECT_EQ(unlimited, test::demandOf(*stream.publisher));
}

TEST(CachedValuePublisher, SaturatedDemandDelivers) {
    SubscribedStream stream;
    stream.request(unlimited);
    stream.request(1); // would wrap around to zero
    stream.offer({1, 2});
    EXPECT_EQ(deliveries({1, 2}), stream.take());
}

TEST(CachedValuePublisher, TheLargestDemandDecreases) {
    SubscribedStream stream;
    stream.request(unlimited);
    stream.offer({1});
    EXPECT_EQ(unlimited - 1, test::demandOf(*stream.publisher));
}

} // namespace connector::reactive_streams
