#include <connector/ServiceProvider.hpp>

namespace connector {

ServiceProvider::ServiceProvider() = default;
ServiceProvider::~ServiceProvider() = default;

} // namespace connector
