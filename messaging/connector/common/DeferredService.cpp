#include <connector/common/DeferredService.hpp>

namespace connector::common {

DeferredService::~DeferredService() = default;

} // namespace connector::common
