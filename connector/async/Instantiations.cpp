/// The instantiations of results and streams whose types belong to nobody in particular.
#include <connector/async/Promise.hpp>

#include <set>
#include <string>

namespace connector {

template class detail::SharedFutureState<bool>;
template class Future<bool>;
template class Promise<bool>;
template class detail::SharedFutureState<std::set<std::string>>;
template class Future<std::set<std::string>>;

} // namespace connector
