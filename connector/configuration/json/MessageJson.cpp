#include <connector/configuration/json/MessageJson.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>
#include <connector/configuration/json/detail/Utf.hpp>
#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationGet.hpp>
#include <connector/configuration/service/ConfigurationKeys.hpp>
#include <connector/configuration/service/ConfigurationKeysResponse.hpp>
#include <connector/configuration/service/ConfigurationOptionResponse.hpp>
#include <connector/configuration/service/ConfigurationSet.hpp>

#include <Poco/JSON/Array.h>

#include <utility>

namespace connector::configuration {

namespace {

using ObjectPtr = Poco::JSON::Object::Ptr;
using MessagePtr = std::unique_ptr<Message>;

ObjectPtr newObject() {
    return new Poco::JSON::Object;
}

template <typename Class>
const Class& as(const MessagePtr& message) {
    return static_cast<const Class&>(*message);
}

std::string readString(const ObjectPtr& object, const std::string& member) {
    return object->optValue<std::string>(member, "");
}

} // namespace

ObjectPtr serializeConfigurationSet(const MessagePtr& message) {
    const auto& set = as<ConfigurationSet>(message);
    ObjectPtr object = newObject();
    object->set("key", set.key);
    object->set("source", set.source);
    object->set("value", fromOptionValue(set.value));
    return object;
}

MessagePtr deserializeConfigurationSet(ObjectPtr object) {
    const std::string key = readString(object, "key");
    const std::string source = readString(object, "source");
    return std::make_unique<ConfigurationSet>(key, toOptionValue(object->getObject("value")),
                                              source);
}

ObjectPtr serializeConfigurationGet(const MessagePtr& message) {
    ObjectPtr object = newObject();
    object->set("key", as<ConfigurationGet>(message).key);
    return object;
}

MessagePtr deserializeConfigurationGet(ObjectPtr object) {
    return std::make_unique<ConfigurationGet>(readString(object, "key"));
}

ObjectPtr serializeConfigurationKeysRequest(const MessagePtr&) {
    return newObject();
}

MessagePtr deserializeConfigurationKeysRequest(ObjectPtr) {
    return std::make_unique<ConfigurationKeys>();
}

ObjectPtr serializeConfigurationKeysResponse(const MessagePtr& message) {
    Poco::JSON::Array::Ptr keys = new Poco::JSON::Array;
    for (const std::string& key : as<ConfigurationKeysResponse>(message).keys)
        keys->add(key);
    ObjectPtr object = newObject();
    object->set("keys", keys);
    return object;
}

MessagePtr deserializeConfigurationKeysResponse(ObjectPtr object) {
    std::set<std::string> keys;
    const Poco::JSON::Array::Ptr array = object->getArray("keys");
    const int size = array.isNull() ? 0 : static_cast<int>(array->size());
    for (int i = 0; i < size; ++i)
        keys.insert(array->optElement<std::string>(static_cast<unsigned>(i), ""));
    return std::make_unique<ConfigurationKeysResponse>(std::move(keys));
}

ObjectPtr serializeConfigurationOptionResponse(const MessagePtr& message) {
    ObjectPtr object = newObject();
    if (const Option* const option = as<ConfigurationOptionResponse>(message).option.get()) {
        object->set("key", option->key);
        object->set("source", option->source);
        object->set("value", fromOptionValue(option->value));
    }
    return object;
}

MessagePtr deserializeConfigurationOptionResponse(ObjectPtr object) {
    const ObjectPtr value = object->getObject("value");
    if (value.isNull())
        return std::make_unique<ConfigurationOptionResponse>();
    return std::make_unique<ConfigurationOptionResponse>(
        Option{readString(object, "key"), readString(object, "source"), toOptionValue(value)});
}

ObjectPtr serializeAddPropertyFileSourceRequest(const MessagePtr& message) {
    const auto& add = as<AddPropertyFileSource>(message);
    ObjectPtr object = newObject();
    object->set("name", add.name);
    object->set("group", add.group);
    object->set("order", add.order);
    object->set("readOnly", add.readOnly);
    object->set("path", detail::toUtf8(add.path));
    return object;
}

MessagePtr deserializeAddPropertyFileSourceRequest(ObjectPtr object) {
    const std::string name = readString(object, "name");
    const std::string group = readString(object, "group");
    const int order = object->optValue<int>("order", 0);
    // Deliberately true: a request that does not mention it adds a read-only source.
    const bool readOnly = object->optValue<bool>("readOnly", true);
    const std::u16string path = detail::toUtf16(readString(object, "path"));
    return std::make_unique<AddPropertyFileSource>(name, group, order, readOnly, path);
}

} // namespace connector::configuration
