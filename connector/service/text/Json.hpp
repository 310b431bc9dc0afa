/// The only way from our data to JSON text. The result is valid whatever bytes and numbers the data
/// holds.
#pragma once

#include <connector/configuration/Option.hpp>

#include <Poco/Dynamic/Var.h>
#include <Poco/JSON/Object.h>

#include <string>

namespace connector::service {

/// @return {"key", "source", "value": {"type", "value"}}
Poco::JSON::Object::Ptr toJson(const connector::configuration::Option& option);

/// @return the text of toJson(option), like jsonText. Takes little more memory than the text, which
///         the objects of an array would exceed many times.
/// @throws std::runtime_error "Text is not valid UTF-16"
std::string optionJson(const connector::configuration::Option& option);

/// @return an empty object that keeps its members in the order in which they are set
Poco::JSON::Object::Ptr makeObject();

/// @return the document on a single line without a line break, with control characters escaped.
///         What JSON cannot represent is replaced: bytes that are not UTF-8 by U+FFFD, infinity and
///         NaN by the strings "inf", "-inf" and "nan".
std::string jsonText(const Poco::Dynamic::Var& document);
std::string jsonText(const std::string& text);

} // namespace connector::service
