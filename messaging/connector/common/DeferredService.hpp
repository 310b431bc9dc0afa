/// The base of objects that serve by being there.
#pragma once

#include <connector/platform/Export.hpp>

namespace connector::common {

/// Something that the application makes, keeps for as long as it is wanted, and destroys.
class CONNECTOR_PLATFORM_EXPORT DeferredService {
public:
    virtual ~DeferredService();
};

} // namespace connector::common
