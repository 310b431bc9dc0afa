#include "support/AllocationFailure.hpp"

#include "support/AllocationCount.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace test {

namespace {

struct alignas(64) OverAligned {
    char byte;
};

/// Allocates once.
void allocate(std::vector<std::string>& texts) {
    texts.emplace_back(1000, 'x');
}

} // namespace

TEST(AllocationFailure, OnlyTheChosenAllocationFails) {
    std::vector<std::string> texts;
    texts.reserve(3);
    const AllocationFailure failure(2);
    allocate(texts);
    EXPECT_FALSE(failure.hasHappened());
    EXPECT_THROW(allocate(texts), std::bad_alloc);
    EXPECT_TRUE(failure.hasHappened());
    allocate(texts);
    EXPECT_EQ(2u, texts.size());
}

TEST(AllocationFailure, NothingFailsAfterItsDestruction) {
    std::vector<std::string> texts;
    texts.reserve(1);
    { const AllocationFailure failure(1); }
    allocate(texts);
    EXPECT_EQ(1u, texts.size());
}

TEST(AllocationFailure, EveryKindOfOperatorNewFails) {
    const auto fails = [](auto allocation) {
        const AllocationFailure failure(1);
        try {
            const auto memory = allocation();
            asm volatile("" : : "g"(memory.get()) : "memory"); // so that nothing is optimised away
            return memory == nullptr;
        } catch (const std::bad_alloc&) {
            return true;
        }
    };
    EXPECT_TRUE(fails([] { return std::make_unique<int>(1); }));
    EXPECT_TRUE(fails([] { return std::make_unique<int[]>(1); }));
    EXPECT_TRUE(fails([] { return std::make_unique<OverAligned>(); }));
    EXPECT_TRUE(fails([] { return std::make_unique<OverAligned[]>(1); }));
    EXPECT_TRUE(fails([] { return std::unique_ptr<int>(new (std::nothrow) int); }));
    EXPECT_TRUE(fails([] { return std::unique_ptr<int[]>(new (std::nothrow) int[1]); }));
    EXPECT_TRUE(fails([] { return std::unique_ptr<OverAligned>(new (std::nothrow) OverAligned); }));
}

TEST(AllocationFailure, OtherThreadsAreNotAffected) {
    std::atomic<bool> isArmed{false};
    bool succeeded = false;
    std::thread other([&] {
        while (!isArmed)
            std::this_thread::yield();
        const auto number = std::make_unique<int>(1);
        succeeded = *number == 1;
    });
    {
        const AllocationFailure failure(1);
        isArmed = true;
        other.join();
    }
    EXPECT_TRUE(succeeded);
}

TEST(FailEveryAllocation, EveryAllocationFailsOnce) {
    int successes = 0;
    int exceptions = 0;
    const std::size_t failures = failEveryAllocation(
        [] {
            std::vector<std::string> texts;
            texts.reserve(3);
            return texts;
        },
        [](std::vector<std::string>& texts) {
            allocate(texts);
            allocate(texts);
            allocate(texts);
        },
        [&](std::vector<std::string>& texts) {
            EXPECT_EQ(static_cast<std::size_t>(exceptions), texts.size());
            ++exceptions;
        },
        [&](std::vector<std::string>& texts) {
            EXPECT_EQ(3u, texts.size());
            ++successes;
        });
    EXPECT_EQ(3u, failures);
    EXPECT_EQ(3, exceptions);
    EXPECT_EQ(1, successes);
}

TEST(FailEveryAllocation, AnOperationThatSucceedsInSpiteOfAFailureCountsAsSuccess) {
    int successes = 0;
    const std::size_t failures = failEveryAllocation(
        [] { return std::vector<std::string>(); },
        [](std::vector<std::string>& texts) {
            try {
                texts.reserve(100);
            } catch (const std::bad_alloc&) {
            }
        },
        [](std::vector<std::string>&) { ADD_FAILURE() << "nothing was thrown"; },
        [&](std::vector<std::string>&) { ++successes; });
    EXPECT_EQ(1u, failures);
    EXPECT_EQ(2, successes);
}

} // namespace test
