/// What loading a property file costs: the library's source beside the least that such a table can
/// cost and the rules word for word. The peers whose packages are there join in from load/.
#include "LoadCase.hpp"
#include "Tables.hpp"

namespace {

[[maybe_unused]] const bool registered = bench::addLoading<bench::Ours>("ours") &&
                                         bench::addLoading<bench::Floor>("floor") &&
                                         bench::addLoading<bench::Literal>("literal");

} // namespace
