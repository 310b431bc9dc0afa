/// The registry of JSON converters for messages.
#pragma once

#include <connector/Message.hpp>
#include <connector/platform/Export.hpp>

#include <Poco/JSON/Object.h>

#include <functional>
#include <memory>
#include <string>
#include <typeinfo>

namespace connector::json {

/// The order of the operations is part of the binary interface.
class CONNECTOR_PLATFORM_EXPORT JsonSerializer {
public:
    using Serialize = std::function<Poco::JSON::Object::Ptr(const std::unique_ptr<Message>&)>;
    using Deserialize = std::function<std::unique_ptr<Message>(Poco::JSON::Object::Ptr)>;

    virtual ~JsonSerializer();

    /// Makes a class of messages known under a type name.
    /// @param serialize    called with messages of exactly that class only
    /// @param deserialize  called with the object under "message"
    virtual void registerConverter(const std::string& typeName, const std::type_info& messageClass,
                                   Serialize serialize, Deserialize deserialize) = 0;

    /// Withdraws what was registered for a class.
    virtual void unregisterConverter(const std::type_info& messageClass) = 0;
};

} // namespace connector::json
