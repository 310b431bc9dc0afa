/// What accompanies a message.
#pragma once

#include <connector/platform/Export.hpp>

namespace connector {

/// Whatever an application wants to travel along with a message. Services pass it on.
class CONNECTOR_PLATFORM_EXPORT Context {
public:
    virtual ~Context();
};

} // namespace connector
