/// Checks one value against its part of a JSON Schema.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <Poco/JSON/Object.h>

#include <string>

namespace connector_config {

/// @param facets  type, minimum, maximum, enum, pattern, minLength, items, minItems and allOf count
/// @return what is wrong, without the value; empty if nothing is
std::string valueProblem(const connector::configuration::OptionValue& value,
                         const Poco::JSON::Object& facets);

/// Checks the schema itself, so that valueProblem can use it.
/// @throws std::runtime_error "Schema cannot be used: ..."
void checkFacets(const Poco::JSON::Object& facets, const std::string& key);

} // namespace connector_config
