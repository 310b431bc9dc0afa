#include <connector/json/JsonSerializerImpl.hpp>

#include <stdexcept>
#include <utility>

namespace connector::json {

namespace {

template <typename Map, typename Key>
typename Map::mapped_type find(std::mutex& mutex, const Map& map, const Key& key) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto entry = map.find(key);
    return entry == map.end() ? nullptr : entry->second;
}

std::invalid_argument notRegistered(const std::type_info& messageClass) {
    return std::invalid_argument(std::string("Message class not registered: ") +
                                 messageClass.name());
}

} // namespace

JsonSerializerImpl::JsonSerializerImpl() {
    add(typeid(Message),
        {"connector/Message",
         [](const std::unique_ptr<Message>&) { return new Poco::JSON::Object; },
         [](const Poco::JSON::Object::Ptr&) { return std::make_unique<Message>(); }});
}

JsonSerializerImpl::~JsonSerializerImpl() = default;

void JsonSerializerImpl::registerConverter(const std::string& typeName,
                                           const std::type_info& messageClass, Serialize serialize,
                                           Deserialize deserialize) {
    add(messageClass, {typeName, std::move(serialize), std::move(deserialize)});
}

void JsonSerializerImpl::add(const std::type_info& messageClass, Converter newConverter) {
    const auto converter = std::make_shared<const Converter>(std::move(newConverter));
    const std::lock_guard<std::mutex> lock(mutex);
    if (byName.count(converter->typeName) != 0)
        throw std::invalid_argument("Message type name already registered: " + converter->typeName);
    const auto [ofClass, isNew] = byClass.emplace(messageClass, converter);
    if (!isNew)
        throw std::invalid_argument(std::string("Message class already registered: ") +
                                    messageClass.name());
    try {
        byName.emplace(converter->typeName, converter);
    } catch (...) {
        byClass.erase(ofClass);
        throw;
    }
}

void JsonSerializerImpl::unregisterConverter(const std::type_info& messageClass) {
    ConverterPtr withdrawn; // goes after the lock: what the functions hold may call anything
    const std::lock_guard<std::mutex> lock(mutex);
    const auto ofClass = byClass.find(messageClass);
    if (ofClass == byClass.end())
        throw notRegistered(messageClass);
    withdrawn = std::move(ofClass->second);
    byName.erase(withdrawn->typeName);
    byClass.erase(ofClass);
}

Poco::JSON::Object::Ptr
JsonSerializerImpl::serialize(const std::unique_ptr<Message>& message) const {
    const Message* const held = message.get();
    if (held == nullptr)
        throw std::invalid_argument("No message to serialize");
    const ConverterPtr converter = find(mutex, byClass, std::type_index(typeid(*held)));
    if (!converter)
        throw notRegistered(typeid(*held));
    Poco::JSON::Object::Ptr object = new Poco::JSON::Object;
    object->set("type", converter->typeName);
    object->set("message", converter->serialize(message));
    return object;
}

std::unique_ptr<Message>
JsonSerializerImpl::deserialize(const Poco::JSON::Object::Ptr& object) const {
    if (object.isNull())
        throw std::invalid_argument("No object to deserialize");
    const std::string typeName = object->optValue<std::string>("type", "");
    const ConverterPtr converter = find(mutex, byName, typeName);
    if (!converter)
        throw std::invalid_argument("Unknown message type: " + typeName);
    const Poco::JSON::Object::Ptr content = object->getObject("message");
    if (content.isNull())
        throw std::invalid_argument("Message without content: " + typeName);
    return converter->deserialize(content);
}

bool JsonSerializerImpl::knows(const std::string& typeName) const {
    return find(mutex, byName, typeName) != nullptr;
}

} // namespace connector::json
