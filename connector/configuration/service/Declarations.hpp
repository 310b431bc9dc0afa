/// The classes of the configuration service, before any of them is complete.
///
/// Requests and the provider refer to each other. Their run-time types cross the border of the
/// library, so every declaration of them must say that they are exported.
#pragma once

#include <connector/Export.hpp>

namespace connector::configuration {

class CONNECTOR_EXPORT ConfigurationServiceProvider;

class CONNECTOR_EXPORT ConfigurationGet;
class CONNECTOR_EXPORT ConfigurationSet;
class CONNECTOR_EXPORT ConfigurationKeys;
class CONNECTOR_EXPORT AddPropertyFileSource;
class CONNECTOR_EXPORT ConfigurationOptionResponse;
class CONNECTOR_EXPORT ConfigurationKeysResponse;

} // namespace connector::configuration
