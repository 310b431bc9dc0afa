/// What loading a property file costs: the library's source beside the least that such a table can
/// cost and the rules word for word. The peers whose packages are there join in from load/.
#include "load/LoadCase.hpp"
#include "load/Tables.hpp"

namespace {

[[maybe_unused]] const bool registered = bench::addLoading<bench::Ours>("ours") &&
                                         bench::addLoading<bench::Floor>("floor") &&
                                         bench::addLoading<bench::Literal>("literal");

} // namespace
