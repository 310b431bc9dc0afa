#include <connector/configuration/service/ConfigurationOptionResponse.hpp>

namespace connector::configuration {

ConfigurationOptionResponse::ConfigurationOptionResponse() = default;

ConfigurationOptionResponse::ConfigurationOptionResponse(const Option& newOption)
    : option(std::make_unique<Option>(newOption)) {
}

ConfigurationOptionResponse::~ConfigurationOptionResponse() = default;

} // namespace connector::configuration
