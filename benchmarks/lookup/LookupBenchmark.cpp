/// The cost of a lookup.
#include "Floor.hpp"
#include "Hits.hpp"
#include "Literal.hpp"
#include "Misses.hpp"
#include "Ours.hpp"

namespace {

using namespace bench::lookup;

[[maybe_unused]] const bool registered = [] {
    addAllHits<Ours>("ours");
    addAllHits<Floor>("floor");
    addAllHits<Literal>("literal");
    const std::string text = "No option with the specified key was found: " + missingKey;
    addMisses<Ours>("ours", text);
    addMisses<Literal>("literal", text);
    return true;
}();

} // namespace
