/// Messages to JSON and back.
///
///     {"type": TYPE NAME, "message": {...}}
#pragma once

#include <connector/json/JsonSerializer.hpp>

#include <map>
#include <mutex>
#include <typeindex>

namespace connector::json {

/// Converts messages to JSON and back. All operations may be called from any thread. Converters run
/// without the lock, so they may call back; one that was withdrawn may still finish a conversion
/// that had begun.
///
/// A bare Message needs no registration: it travels as "connector/Message" with an empty object.
class CONNECTOR_PLATFORM_EXPORT JsonSerializerImpl : public JsonSerializer {
public:
    JsonSerializerImpl();
    ~JsonSerializerImpl() override;

    /// @throws std::invalid_argument "Message type name already registered: " + name, or
    ///         "Message class already registered: " + std::type_info::name
    void registerConverter(const std::string& typeName, const std::type_info& messageClass,
                           Serialize serialize, Deserialize deserialize) override;

    /// @throws std::invalid_argument "Message class not registered: " + std::type_info::name
    void unregisterConverter(const std::type_info& messageClass) override;

    /// @throws std::invalid_argument "Message class not registered: " + std::type_info::name;
    ///         "No message to serialize" for a null pointer
    /// @throws what the converter throws
    Poco::JSON::Object::Ptr serialize(const std::unique_ptr<Message>& message) const;

    /// @throws std::invalid_argument "Unknown message type: " + the name, which is empty when there
    ///         is none; "Message without content: " + the name, when "message" is no object;
    ///         "No object to deserialize" for a null pointer
    /// @throws what the converter throws
    std::unique_ptr<Message> deserialize(const Poco::JSON::Object::Ptr& object) const;

    /// @return whether messages of that type name can be converted
    bool knows(const std::string& typeName) const;

private:
    struct Converter {
        std::string typeName;
        Serialize serialize;
        Deserialize deserialize;
    };
    using ConverterPtr = std::shared_ptr<const Converter>;

    void add(const std::type_info& messageClass, Converter converter);

    mutable std::mutex mutex; // guards the maps; nothing is called under it
    std::map<std::string, ConverterPtr> byName;
    std::map<std::type_index, ConverterPtr> byClass;
};

} // namespace connector::json
