#include <connector/configuration/json/detail/SnapshotReader.hpp>

#include <connector/configuration/json/detail/BadMember.hpp>
#include <connector/configuration/json/detail/SnapshotText.hpp>
#include <connector/configuration/json/detail/SnapshotValue.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <algorithm>
#include <limits>

namespace connector::configuration::detail {

namespace {

using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

constexpr int knownFormat = 1;
constexpr const char* mask = "******";

/// Reads a member with a function that throws BadMember with the rest of the place.
template <typename Read>
auto member(const Object& object, const std::string& name, Read read) {
    if (!object.has(name))
        throw BadMember(name, "missing");
    try {
        return read(object.get(name));
    } catch (const BadMember& bad) {
        throw bad.within(name);
    }
}

/// Calls a function with each element of a member that is an array.
template <typename Read>
void forEachElement(const Object& object, const std::string& name, Read read) {
    member(object, name, [&](const Var& json) {
        if (json.type() != typeid(Array::Ptr))
            throw BadMember("", "not an array");
        std::size_t index = 0;
        for (const Var& element : *json.extract<Array::Ptr>()) {
            try {
                read(element);
            } catch (const BadMember& bad) {
                throw bad.within("[" + std::to_string(index) + "]");
            }
            ++index;
        }
    });
}

Object::Ptr readObject(const Var& json) {
    if (json.type() != typeid(Object::Ptr))
        throw BadMember("", "not an object");
    return json.extract<Object::Ptr>();
}

std::string readText(const Var& json) {
    if (std::optional<std::string> text = textOf(json))
        return *std::move(text);
    throw BadMember("", "not a string");
}

bool readBool(const Var& json) {
    if (json.type() != typeid(bool))
        throw BadMember("", "not a boolean");
    return json.extract<bool>();
}

int readInt(const Var& json) {
    if (const std::optional<int> number = integerOf<int>(json))
        return *number;
    throw BadMember("", "not a 32-bit integer");
}

std::string readGroup(const Var& json) {
    std::string group = readText(json);
    if (!group.empty() && group.back() != '.')
        throw BadMember("", "does not end in a dot: " + group);
    return group;
}

void readFormat(const Var& json) {
    const int format = readInt(json);
    if (format != knownFormat)
        throw BadMember("", "unknown format: " + std::to_string(format));
}

SnapshotEntry readEntry(const Object& object) {
    if (object.has("masked") && member(object, "masked", readBool))
        return {std::string(mask), true};
    return {member(object, "value", readValue), false};
}

SourceSnapshot readSource(const Var& json) {
    const Object::Ptr object = readObject(json);
    SourceSnapshot source{member(*object, "name", readText),
                          member(*object, "group", readGroup),
                          member(*object, "order", readInt),
                          member(*object, "readOnly", readBool),
                          {}};
    forEachElement(*object, "entries", [&source](const Var& element) {
        const Object::Ptr entry = readObject(element);
        const std::string key = member(*entry, "key", readText);
        if (!source.entries.emplace(key, readEntry(*entry)).second)
            throw BadMember("key", "given twice: " + key);
    });
    return source;
}

/// @throws BadMember if a configuration could not have both this source and those before it
void checkPlace(const std::vector<SourceSnapshot>& before, const SourceSnapshot& source) {
    const auto hasSameName = [&](const SourceSnapshot& one) { return one.name == source.name; };
    if (std::any_of(before.begin(), before.end(), hasSameName))
        throw BadMember("name", "given twice: " + source.name);
    if (!before.empty() && before.back().order > source.order)
        throw BadMember("order",
                        "less than that of the source before it: " + std::to_string(source.order));
}

} // namespace

std::vector<SourceSnapshot> readSources(const Var& document) {
    const Object::Ptr object = readObject(document);
    member(*object, "format", readFormat);
    std::vector<SourceSnapshot> sources;
    forEachElement(*object, "sources", [&sources](const Var& element) {
        SourceSnapshot source = readSource(element);
        checkPlace(sources, source);
        sources.push_back(std::move(source));
    });
    return sources;
}

} // namespace connector::configuration::detail
