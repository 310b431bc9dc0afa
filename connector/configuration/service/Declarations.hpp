/// The classes of the configuration service, before any of them is complete.
///
/// Requests and the provider refer to each other, and their types are asked for at run time across
/// the library's border, so whoever names one of them must know from the start that it is exported.
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
