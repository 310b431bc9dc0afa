#include <connector/Context.hpp>

namespace connector {

Context::~Context() = default;

} // namespace connector
