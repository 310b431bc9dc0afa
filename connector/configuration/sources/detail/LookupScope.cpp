#include <connector/configuration/sources/detail/LookupScope.hpp>

#include <algorithm>
#include <atomic>

namespace connector::configuration::detail {

namespace {

thread_local LookupScope* outermost = nullptr;
thread_local std::uint64_t lastNumber = 0;

/// @return the first number of a thread; each thread has more numbers than it can use up
std::uint64_t firstNumber() {
    static std::atomic<std::uint64_t> threads{0};
    return (threads.fetch_add(1, std::memory_order_relaxed) << 40) + 1;
}

} // namespace

LookupScope::~LookupScope() {
    if (isOutermost)
        outermost = nullptr; // first: destroying the tables may make calls outside of the lookup
}

std::uint64_t LookupScope::enterNow() {
    if (outermost != nullptr)
        return number = outermost->number;
    outermost = this;
    isOutermost = true;
    lastNumber = lastNumber == 0 ? firstNumber() : lastNumber + 1;
    return number = lastNumber;
}

LookupScope* LookupScope::current() {
    return outermost;
}

const SnapshotSource::Snapshot& LookupScope::tableOf(const SnapshotSource& source) {
    const auto found = std::find_if(kept.begin(), kept.end(),
                                    [&source](const Kept& one) { return one.first == &source; });
    if (found != kept.end())
        return found->second;
    return kept.emplace_back(&source, source.newest()).second;
}

} // namespace connector::configuration::detail
