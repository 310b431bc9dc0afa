/// Reads JSON as POCO's objects.
#pragma once

#include <Poco/Dynamic/Var.h>

#include <functional>
#include <string_view>

namespace connector::service {

/// @return the value; objects and arrays are pointers to POCO's classes
/// @throws std::invalid_argument "Text is not valid JSON: " + reason, "Text is not valid UTF-8", or
///         "Text has more than 64 levels of nesting"
Poco::Dynamic::Var readJsonValue(std::string_view json);

/// Reads an array element by element: the objects of one element exist at a time, since they take
/// many times the memory of their text.
/// @throws std::invalid_argument  as readJsonValue, and "Text is not an array"
/// @throws what `onElement` throws
void readJsonArray(std::string_view json,
                   const std::function<void(const Poco::Dynamic::Var&)>& onElement);

} // namespace connector::service
