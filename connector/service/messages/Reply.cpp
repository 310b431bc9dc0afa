#include <connector/service/messages/Reply.hpp>

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <boost/core/demangle.hpp>

#include <cmath>
#include <stdexcept>
#include <typeinfo>

namespace connector::service {

namespace {

using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

Var sayable(const Var& value);

Object::Ptr sayableObject(const Object& object) {
    Object::Ptr copy = makeObject();
    for (const std::string& name : object.getNames())
        copy->set(repaired(name), sayable(object.get(name)));
    return copy;
}

Array::Ptr sayableArray(const Array& array) {
    Array::Ptr copy = new Array;
    for (const Var& element : array)
        copy->add(sayable(element));
    return copy;
}

Var sayable(const Var& value) {
    if (value.type() == typeid(Object::Ptr))
        return sayableObject(*value.extract<Object::Ptr>());
    if (value.type() == typeid(Array::Ptr))
        return sayableArray(*value.extract<Array::Ptr>());
    if (value.type() == typeid(std::string))
        return repaired(value.extract<std::string>());
    if (value.type() == typeid(double) && !std::isfinite(value.extract<double>()))
        return value.toString();
    return value;
}

std::string failureText(const std::type_info& type, const std::string& text,
                        const std::optional<std::string>& id) {
    Object::Ptr description = makeObject();
    description->set("type", boost::core::demangle(type.name()));
    description->set("text", text);
    Object::Ptr object = makeObject();
    object->set("error", description);
    return withId(id, jsonText(object));
}

} // namespace

std::string errorText(const std::exception& error, const std::optional<std::string>& id) {
    return failureText(typeid(error), error.what(), id);
}

std::string errorText(const std::string& text, const std::optional<std::string>& id) {
    return failureText(typeid(std::runtime_error), text, id);
}

std::string jsonText(const Var& document) {
    return toText(sayable(document));
}

std::string withId(const std::optional<std::string>& id, const std::string& object) {
    return id ? "{\"id\":" + *id + "," + object.substr(1) : object;
}

} // namespace connector::service
