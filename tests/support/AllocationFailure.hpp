/// Makes each allocation of an operation fail in turn. Needs AllocationCount.cpp.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

namespace test {

/// Makes the n-th allocation that this thread makes from now on fail, unless it is destroyed first.
/// Only one may exist in a thread at a time.
class AllocationFailure {
public:
    /// @param nth  1 for the next allocation
    explicit AllocationFailure(std::size_t nth);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    /// @return whether an allocation has failed
    bool hasHappened() const;

private:
    const std::size_t number;
};

/// Runs `operation` once for each of its allocations, which fails in that run, and once without a
/// failure. Each run has a subject of its own.
/// @param makeSubject   called before each run; returns the object that `operation` works on
/// @param operation     called with the subject; throws std::bad_alloc, or succeeds in spite of the
///                      failure. Any other exception leaves. It should contain no expectation of
///                      gtest, because those allocate.
/// @param afterFailure  called with the subject after each run that threw std::bad_alloc
/// @param afterSuccess  called with the subject after each run that did not, the last one included
/// @return in how many runs an allocation failed
template <typename MakeSubject, typename Operation, typename AfterFailure, typename AfterSuccess>
std::size_t failEveryAllocation(MakeSubject makeSubject, Operation operation,
                                AfterFailure afterFailure, AfterSuccess afterSuccess) {
    std::size_t failures = 0;
    for (bool hasFailed = true; hasFailed; failures += hasFailed ? 1 : 0) {
        SCOPED_TRACE(::testing::Message() << "failed allocation: " << failures + 1);
        auto subject = makeSubject();
        bool hasThrown = false;
        {
            const AllocationFailure failure(failures + 1);
            try {
                static_cast<void>(operation(subject));
            } catch (const std::bad_alloc&) {
                hasThrown = true;
            }
            hasFailed = failure.hasHappened();
        }
        EXPECT_TRUE(hasFailed || !hasThrown) << "std::bad_alloc although no allocation failed";
        hasThrown ? afterFailure(subject) : afterSuccess(subject);
    }
    return failures;
}

} // namespace test
