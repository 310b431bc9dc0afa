#include <connector/configuration/json/OptionValueJson.hpp>

#include <connector/configuration/json/detail/Utf.hpp>

#include <Poco/JSON/Array.h>

namespace connector::configuration {

namespace {

// The payload of one scalar, and of one element of a vector.
template <typename T>
const T& toPayload(const T& value) {
    return value;
}
std::string toPayload(const std::u16string& value) {
    return detail::toUtf8(value);
}

/// Writes any alternative of a value into an object.
class Writer : public boost::static_visitor<void> {
public:
    explicit Writer(Poco::JSON::Object& newObject) : object(newObject) {}

    void operator()(bool value) const { write("bool", value); }
    void operator()(int value) const { write("int", value); }
    void operator()(unsigned int value) const { write("uint", value); }
    void operator()(double value) const { write("double", value); }
    void operator()(const std::u16string& value) const { write("ustring", toPayload(value)); }
    void operator()(const std::string& value) const { write("string", value); }
    void operator()(const std::vector<bool>& values) const { writeAll("boolArray", values); }
    void operator()(const std::vector<int>& values) const { writeAll("intArray", values); }
    void operator()(const std::vector<unsigned int>& values) const {
        writeAll("uintArray", values);
    }
    void operator()(const std::vector<double>& values) const { writeAll("doubleArray", values); }
    void operator()(const std::vector<std::string>& values) const {
        writeAll("stringArray", values);
    }
    void operator()(const std::vector<std::u16string>& values) const {
        writeAll("ustringArray", values);
    }

private:
    template <typename Payload>
    void write(const char* tag, const Payload& payload) const {
        object.set("type", std::string(tag));
        object.set("value", payload);
    }

    template <typename T>
    void writeAll(const char* tag, const std::vector<T>& values) const {
        Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
        for (const T& value : values)
            array->add(toPayload(value));
        write(tag, array);
    }

    Poco::JSON::Object& object;
};

template <typename T>
std::vector<T> readAll(const Poco::JSON::Object& object, const T& whereUnreadable) {
    std::vector<T> values;
    const Poco::JSON::Array::Ptr array = object.getArray("value");
    if (array.isNull())
        return values;
    const int size = static_cast<int>(array->size());
    for (int i = 0; i < size; ++i)
        values.push_back(array->optElement<T>(static_cast<unsigned>(i), whereUnreadable));
    return values;
}

std::vector<std::u16string> readAllUtf16(const Poco::JSON::Object& object) {
    std::vector<std::u16string> values;
    for (const std::string& text : readAll<std::string>(object, ""))
        values.push_back(detail::toUtf16(text));
    return values;
}

} // namespace

Poco::JSON::Object::Ptr fromOptionValue(const OptionValue& value) {
    Poco::JSON::Object::Ptr object = new Poco::JSON::Object;
    boost::apply_visitor(Writer(*object), value);
    return object;
}

OptionValue toOptionValue(const Poco::JSON::Object::Ptr& object) {
    if (object.isNull())
        return std::string();
    const std::string tag = object->optValue<std::string>("type", "");
    if (tag == "int")
        return object->optValue<int>("value", 0);
    if (tag == "uint")
        return object->optValue<unsigned int>("value", 0);
    if (tag == "bool")
        return object->optValue<bool>("value", false);
    if (tag == "double")
        return object->optValue<double>("value", 0.0);
    if (tag == "ustring")
        return detail::toUtf16(object->optValue<std::string>("value", ""));
    if (tag == "string")
        return object->optValue<std::string>("value", "");
    if (tag == "boolArray")
        return readAll<bool>(*object, false);
    if (tag == "intArray")
        return readAll<int>(*object, 0);
    if (tag == "uintArray")
        return readAll<unsigned int>(*object, 0);
    if (tag == "doubleArray")
        return readAll<double>(*object, 0.0);
    if (tag == "stringArray")
        return readAll<std::string>(*object, "");
    if (tag == "ustringArray")
        return readAllUtf16(*object);
    return std::string(); // a reader that does not know a tag gets a harmless value, not an error
}

} // namespace connector::configuration
