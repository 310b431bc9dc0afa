/// What the program says, as JSON. Whatever bytes keys, names and values hold, the result is valid:
/// bytes that are no UTF-8 become U+FFFD.
#pragma once

#include <connector/configuration/Option.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <Poco/Dynamic/Var.h>
#include <Poco/JSON/Object.h>

#include <string>

namespace connector::service {

/// @return {"type", "value"}
Poco::JSON::Object::Ptr toJson(const connector::configuration::OptionValue& value);

/// @return {"key", "source", "value": {"type", "value"}}
Poco::JSON::Object::Ptr toJson(const connector::configuration::Option& option);

/// @return an object that keeps its members in the order in which they are set
Poco::JSON::Object::Ptr makeObject();

/// @return the document on one line, without the line's end
std::string toText(const Poco::Dynamic::Var& document);

} // namespace connector::service
