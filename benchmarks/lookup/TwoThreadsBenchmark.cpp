/// Two threads that use one configuration. The time is that of one lookup; at best it is half the
/// time of a lookup on one thread.
///
/// This needs two idle cores. The case "two free cores" shows whether there are: it runs the same
/// work without any lock, on two threads and on one.
#include "Floor.hpp"
#include "Hits.hpp"
#include "Literal.hpp"
#include "Ours.hpp"

namespace {

using namespace bench::lookup;

void addCase(const LookupCase& lookupCase) {
    const std::string description = "two threads, ";
    for (auto* const contestant : {
             addHits<Ours>(description, "ours", lookupCase),
             addHits<Floor>(description, "floor", lookupCase),
             addHits<Literal>(description, "literal", lookupCase),
         })
        contestant->Threads(2)->UseRealTime();
}

[[maybe_unused]] const bool registered = [] {
    for (const std::size_t length : {0, 12, 40})
        addCase({{1000, 2, false, length}, false});
    return true;
}();

[[maybe_unused]] const bool registeredWithoutLock = [] {
    const auto run = [](benchmark::State& state) {
        runHits<WithoutLock, int>(state, {{1000, 2, false, 0}, false});
    };
    bench::add("lookup", "two free cores", "two threads", run)->Threads(2)->UseRealTime();
    bench::add("lookup", "two free cores", "one thread", run)->Threads(1)->UseRealTime();
    return true;
}();

} // namespace
