#include <connector/service/text/Json.hpp>

#include <connector/service/text/Escaping.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Stringifier.h>

#include <cmath>
#include <sstream>

namespace connector::service {

namespace {

using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

Var representableInJson(const Var& value);

Object::Ptr representableObject(const Object& object) {
    Object::Ptr copy = makeObject();
    for (const std::string& name : object.getNames())
        copy->set(toValidUtf8(name), representableInJson(object.get(name)));
    return copy;
}

Array::Ptr representableArray(const Array& array) {
    Array::Ptr copy = new Array;
    for (const Var& element : array)
        copy->add(representableInJson(element));
    return copy;
}

Var representableInJson(const Var& value) {
    if (value.type() == typeid(Object::Ptr))
        return representableObject(*value.extract<Object::Ptr>());
    if (value.type() == typeid(Array::Ptr))
        return representableArray(*value.extract<Array::Ptr>());
    if (value.type() == typeid(std::string))
        return toValidUtf8(value.extract<std::string>());
    if (value.type() == typeid(double) && !std::isfinite(value.extract<double>()))
        return value.toString();
    return value;
}

} // namespace

Object::Ptr toJson(const connector::configuration::Option& option) {
    Object::Ptr object = makeObject();
    object->set("key", option.key);
    object->set("source", option.source);
    object->set("value", connector::configuration::fromOptionValue(option.value));
    return object;
}

Object::Ptr makeObject() {
    return new Object(Poco::JSON_PRESERVE_KEY_ORDER);
}

std::string jsonText(const Var& document) {
    std::ostringstream text;
    Poco::JSON::Stringifier::stringify(representableInJson(document), text);
    return escapedJson(text.str());
}

} // namespace connector::service
