/// Registers the messages of the configuration service with a JSON serializer.
#pragma once

#include <connector/Export.hpp>
#include <connector/common/DeferredService.hpp>
#include <connector/json/JsonSerializer.hpp>

#include <memory>

namespace connector::configuration {

/// For as long as this object lives, the serializer converts the six messages, under the type names
/// "connector/configuration/" + class: ConfigurationSet, ConfigurationGet, ConfigurationKeys,
/// ConfigurationKeysResponse, ConfigurationOptionResponse, AddPropertyFileSource.
class CONNECTOR_EXPORT ConfigurationJsonSerialization : public common::DeferredService {
public:
    /// Registers the six, in the order above.
    /// @throws std::invalid_argument "A JSON serialization needs a serializer."
    /// @throws what registerConverter throws; what was registered before stays registered
    explicit ConfigurationJsonSerialization(std::shared_ptr<json::JsonSerializer> newSerializer);

    /// Withdraws the six, in the same order. What unregisterConverter throws ends the program.
    ~ConfigurationJsonSerialization() override;

    ConfigurationJsonSerialization(const ConfigurationJsonSerialization&) = delete;
    ConfigurationJsonSerialization& operator=(const ConfigurationJsonSerialization&) = delete;

private:
    const std::shared_ptr<json::JsonSerializer> serializer;
};

} // namespace connector::configuration
