#include <connector/configuration/json/detail/SnapshotValue.hpp>

#include <connector/configuration/detail/TypeTags.hpp>
#include <connector/configuration/json/detail/BadMember.hpp>
#include <connector/configuration/json/detail/SnapshotText.hpp>
#include <connector/configuration/json/detail/Utf.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <algorithm>
#include <stdexcept>

namespace connector::configuration::detail {

namespace {

using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

/// Reads a payload. All overloads return nothing for a payload of another type.
std::optional<bool> payloadOf(const Var& json, const bool*) {
    return json.type() == typeid(bool) ? std::optional<bool>(json.extract<bool>()) : std::nullopt;
}

std::optional<int> payloadOf(const Var& json, const int*) {
    return integerOf<int>(json);
}

std::optional<unsigned int> payloadOf(const Var& json, const unsigned int*) {
    return integerOf<unsigned int>(json);
}

std::optional<double> payloadOf(const Var& json, const double*) {
    return doubleOf(json);
}

std::optional<std::string> payloadOf(const Var& json, const std::string*) {
    return textOf(json);
}

std::optional<std::u16string> payloadOf(const Var& json, const std::u16string*) {
    if (json.type() != typeid(std::string)) // it never needs base64
        return std::nullopt;
    try {
        return toUtf16(json.extract<std::string>());
    } catch (const std::runtime_error& error) {
        throw BadMember("", error.what());
    }
}

template <typename Element>
std::optional<std::vector<Element>> payloadOf(const Var& json, const std::vector<Element>*) {
    if (json.type() != typeid(Array::Ptr))
        return std::nullopt;
    std::vector<Element> elements;
    for (const Var& var : *json.extract<Array::Ptr>()) {
        std::optional<Element> element = payloadOf(var, static_cast<const Element*>(nullptr));
        if (!element)
            throw BadMember("[" + std::to_string(elements.size()) + "]",
                            "not an element of such an array");
        elements.push_back(std::move(*element));
    }
    return elements;
}

template <typename T>
OptionValue valueOf(const Var& json) {
    std::optional<T> payload = payloadOf(json, static_cast<const T*>(nullptr));
    if (!payload)
        throw BadMember("", "not of this type: " + std::string(typeTagOf(OptionValue(T()))));
    return OptionValue(std::move(*payload));
}

using Reader = OptionValue (*)(const Var&);

/// In the order of the tags.
constexpr std::array<Reader, typeTags.size()> readers = {
    valueOf<bool>,
    valueOf<int>,
    valueOf<unsigned int>,
    valueOf<double>,
    valueOf<std::u16string>,
    valueOf<std::string>,
    valueOf<std::vector<bool>>,
    valueOf<std::vector<int>>,
    valueOf<std::vector<unsigned int>>,
    valueOf<std::vector<double>>,
    valueOf<std::vector<std::string>>,
    valueOf<std::vector<std::u16string>>,
};

Reader readerOf(const Object& object) {
    if (!object.has("type"))
        throw BadMember("type", "missing");
    const Var type = object.get("type");
    if (type.type() != typeid(std::string))
        throw BadMember("type", "not a string");
    const std::string tag = type.extract<std::string>();
    const auto found = std::find(typeTags.begin(), typeTags.end(), tag);
    if (found == typeTags.end())
        throw BadMember("type", "unknown type: " + tag);
    return readers[static_cast<std::size_t>(found - typeTags.begin())];
}

} // namespace

OptionValue readValue(const Var& json) {
    if (json.type() != typeid(Object::Ptr))
        throw BadMember("", "not an object");
    const Object& object = *json.extract<Object::Ptr>();
    const Reader read = readerOf(object);
    if (!object.has("value"))
        throw BadMember("value", "missing");
    try {
        return read(object.get("value"));
    } catch (const BadMember& bad) {
        throw bad.within("value");
    }
}

} // namespace connector::configuration::detail
