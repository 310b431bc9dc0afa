/// JSON objects from text, and back.
#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <sstream>
#include <string>

namespace test {

/// @return the object that `text` says; throws when it is no object
inline Poco::JSON::Object::Ptr parse(const std::string& text) {
    return Poco::JSON::Parser().parse(text).extract<Poco::JSON::Object::Ptr>();
}

/// @return the object on one line, its members in ascending order
inline std::string print(const Poco::JSON::Object::Ptr& object) {
    std::ostringstream text;
    object->stringify(text);
    return text.str();
}

} // namespace test
