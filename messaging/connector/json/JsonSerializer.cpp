#include <connector/json/JsonSerializer.hpp>

namespace connector::json {

JsonSerializer::~JsonSerializer() = default;

} // namespace connector::json
