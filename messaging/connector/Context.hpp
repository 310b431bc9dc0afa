/// Data that accompanies a message.
#pragma once

#include <connector/platform/Export.hpp>

namespace connector {

/// The base of data that an application sends along with a message. Services pass it on unchanged.
class CONNECTOR_PLATFORM_EXPORT Context {
public:
    virtual ~Context();
};

} // namespace connector
