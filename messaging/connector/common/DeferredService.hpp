/// The base class of objects that provide a service as long as they exist.
#pragma once

#include <connector/platform/Export.hpp>

namespace connector::common {

/// The application creates such an object, keeps it as long as the service is needed, and destroys
/// it.
class CONNECTOR_PLATFORM_EXPORT DeferredService {
public:
    virtual ~DeferredService();
};

} // namespace connector::common
