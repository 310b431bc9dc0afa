#include <connector/configuration/sources/ConfigurationSource.hpp>

namespace connector::configuration {

ConfigurationSource::~ConfigurationSource() = default;

} // namespace connector::configuration
