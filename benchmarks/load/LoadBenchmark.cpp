/// The cost of loading a property file. The files beside this one add other libraries, if they are
/// installed.
#include "LoadCase.hpp"
#include "Tables.hpp"

namespace {

[[maybe_unused]] const bool registered = bench::addLoading<bench::Ours>("ours") &&
                                         bench::addLoading<bench::Floor>("floor") &&
                                         bench::addLoading<bench::Literal>("literal");

} // namespace
