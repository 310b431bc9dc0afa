/// The key functions of the classes that have no other code: each class has its vtable here.
#include <connector/Context.hpp>
#include <connector/Message.hpp>
#include <connector/ServiceProvider.hpp>
#include <connector/common/DeferredService.hpp>
#include <connector/json/JsonSerializer.hpp>

namespace connector {

Context::~Context() = default;

Message::Message() = default;
Message::~Message() = default;

ServiceProvider::ServiceProvider() = default;
ServiceProvider::~ServiceProvider() = default;

common::DeferredService::~DeferredService() = default;

json::JsonSerializer::~JsonSerializer() = default;

} // namespace connector
