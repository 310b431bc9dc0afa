#include <connector/configuration/service/ConfigurationKeysResponse.hpp>

#include <utility>

namespace connector::configuration {

ConfigurationKeysResponse::ConfigurationKeysResponse(std::set<std::string>&& newKeys)
    : keys(std::move(newKeys)) {
}

ConfigurationKeysResponse::~ConfigurationKeysResponse() = default;

} // namespace connector::configuration
