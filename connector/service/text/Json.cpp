#include <connector/service/text/Json.hpp>

#include <connector/service/text/Escaping.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Stringifier.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <vector>

namespace connector::service {

namespace {

using connector::configuration::fromOptionValue;
using connector::configuration::OptionValue;
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

/// Writes {"type", "value"}.
struct ValueWriter : boost::static_visitor<std::string> {
    template <typename Scalar>
    std::string operator()(const Scalar& value) const {
        const Object::Ptr object = fromOptionValue(value);
        return "{\"type\":" + jsonText(object->get("type")) +
               ",\"value\":" + jsonText(object->get("value")) + "}";
    }

    /// Builds the objects of some elements at a time.
    template <typename Element>
    std::string operator()(const std::vector<Element>& elements) const {
        constexpr std::size_t elementsAtATime = 256;
        const OptionValue none = std::vector<Element>();
        std::string text = "{\"type\":" + jsonText(fromOptionValue(none)->get("type"));
        text += ",\"value\":[";
        for (std::size_t done = 0; done < elements.size(); done += elementsAtATime) {
            const auto first = elements.begin() + static_cast<std::ptrdiff_t>(done);
            const auto count = std::min(elementsAtATime, elements.size() - done);
            const OptionValue some =
                std::vector<Element>(first, first + static_cast<std::ptrdiff_t>(count));
            const std::string array = jsonText(fromOptionValue(some)->get("value"));
            text += done == 0 ? "" : ",";
            text.append(array, 1, array.size() - 2); // without its brackets
        }
        return text + "]}";
    }
};

} // namespace

Object::Ptr toJson(const connector::configuration::Option& option) {
    Object::Ptr object = makeObject();
    object->set("key", option.key);
    object->set("source", option.source);
    object->set("value", connector::configuration::fromOptionValue(option.value));
    return object;
}

std::string optionJson(const connector::configuration::Option& option) {
    return "{\"key\":" + jsonText(option.key) + ",\"source\":" + jsonText(option.source) +
           ",\"value\":" + boost::apply_visitor(ValueWriter(), option.value) + "}";
}

Object::Ptr makeObject() {
    return new Object(Poco::JSON_PRESERVE_KEY_ORDER);
}

std::string jsonText(const Var& document) {
    if (document.type() == typeid(std::string))
        return jsonText(document.extract<std::string>());
    if (document.isBoolean() || document.type() == typeid(int) ||
        document.type() == typeid(unsigned int))
        return document.toString();
    std::ostringstream text;
    Poco::JSON::Stringifier::stringify(representableInJson(document), text);
    return escapedJson(text.str());
}

/// Needs no stream, which would cost more than the text.
std::string jsonText(const std::string& text) {
    return escapedJson(Poco::toJSON(toValidUtf8(text), Poco::JSON_WRAP_STRINGS));
}

} // namespace connector::service
