/// Shorthands for parsing and printing JSON objects.
#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <sstream>
#include <string>

namespace test {

/// @return the object that `text` describes. Throws when it describes something else
inline Poco::JSON::Object::Ptr parse(const std::string& text) {
    return Poco::JSON::Parser().parse(text).extract<Poco::JSON::Object::Ptr>();
}

/// @return the object on one line, with its members in ascending order
inline std::string print(const Poco::JSON::Object::Ptr& object) {
    std::ostringstream text;
    object->stringify(text);
    return text.str();
}

} // namespace test
