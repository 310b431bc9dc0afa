/// Two threads that ask one configuration. The time is that of one lookup: half of what a lookup takes
/// on one thread would be the best.
///
/// That can be seen only where two cores are free. The case "two free cores" tells: the same work
/// without any lock, on two threads and on one.
#include "Floor.hpp"
#include "Hits.hpp"
#include "Literal.hpp"
#include "Ours.hpp"

namespace {

using namespace bench::lookup;

void addCase(const Question& question) {
    const std::string description = "two threads, ";
    for (auto* const contestant : {
             addHits<Ours>(description, "ours", question),
             addHits<Floor>(description, "floor", question),
             addHits<Literal>(description, "literal", question),
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
