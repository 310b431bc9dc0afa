/// Option values as JSON objects, for other processes.
///
///     {"type": TAG, "value": PAYLOAD}
///
///     bool    "bool"    a boolean          std::vector of  bool            "boolArray"
///     int     "int"     an integer                         int             "intArray"
///     unsigned int      "uint"  an integer                 unsigned int    "uintArray"
///     double  "double"  a number                           double          "doubleArray"
///     std::u16string    "ustring"  a string, UTF-8         std::string     "stringArray"
///     std::string       "string"   a string, its bytes     std::u16string  "ustringArray"
///
/// Both functions may be called from any thread.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <Poco/JSON/Object.h>

namespace connector::configuration {

/// @return a new object, never null
/// @throws std::runtime_error "Text is not valid UTF-16"
CONNECTOR_EXPORT Poco::JSON::Object::Ptr fromOptionValue(const OptionValue& value);

/// Reads what fromOptionValue writes, and tolerates everything else: a payload that is missing or
/// does not convert gives the zero value of the tag's type; an unknown tag or a null pointer gives
/// an empty std::string.
/// @throws std::runtime_error "Text is not valid UTF-8", for the two tags of UTF-16 text only
CONNECTOR_EXPORT OptionValue toOptionValue(const Poco::JSON::Object::Ptr& object);

} // namespace connector::configuration
