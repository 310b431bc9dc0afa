#include "support/AllocationFailure.hpp"

#include "support/AllocationCount.hpp"

namespace test {

AllocationFailure::AllocationFailure(std::size_t nth) : number(allocationCount() + nth) {
    failAllocation(number);
}

AllocationFailure::~AllocationFailure() {
    failAllocation(0);
}

bool AllocationFailure::hasHappened() const {
    return allocationCount() >= number;
}

} // namespace test
