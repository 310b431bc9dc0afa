/// Short ways from JSON objects to their text and back.
#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <sstream>
#include <string>

namespace test {

inline Poco::JSON::Object::Ptr parse(const std::string& json) {
    return Poco::JSON::Parser().parse(json).extract<Poco::JSON::Object::Ptr>();
}

inline std::string print(const Poco::JSON::Object::Ptr& object) {
    std::ostringstream text;
    object->stringify(text);
    return text.str();
}

} // namespace test
