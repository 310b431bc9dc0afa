/// The instantiations of futures for types that no other header of the library declares.
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
