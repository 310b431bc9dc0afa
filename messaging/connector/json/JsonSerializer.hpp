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

/// Holds the JSON converters of messages. The order of the virtual functions is part of the binary
/// interface.
class CONNECTOR_PLATFORM_EXPORT JsonSerializer {
public:
    using Serialize = std::function<Poco::JSON::Object::Ptr(const std::unique_ptr<Message>&)>;
    using Deserialize = std::function<std::unique_ptr<Message>(Poco::JSON::Object::Ptr)>;

    virtual ~JsonSerializer();

    /// Registers the converters of a message class under a type name.
    /// @param serialize    is called only with messages of exactly that class
    /// @param deserialize  is called with the object in "message"
    virtual void registerConverter(const std::string& typeName, const std::type_info& messageClass,
                                   Serialize serialize, Deserialize deserialize) = 0;

    /// Removes the converters of a message class.
    virtual void unregisterConverter(const std::type_info& messageClass) = 0;
};

} // namespace connector::json
