/// Text and numbers in the JSON of snapshots.
#pragma once

#include <Poco/Dynamic/Var.h>

#include <optional>
#include <string>

namespace connector::configuration::detail {

/// @return the JSON form of any bytes: a string if they are UTF-8, otherwise {"base64": BYTES}
std::string textJson(const std::string& text);

/// @return the number with a fraction or an exponent, so that every reader takes it for a double;
///         "inf", "-inf" and "nan" as strings
std::string numberJson(double number);

/// @return the bytes that textJson has written; nothing if it has not
std::optional<std::string> textOf(const Poco::Dynamic::Var& json);

/// @return the number that numberJson has written, or an integer; nothing if it is neither
std::optional<double> doubleOf(const Poco::Dynamic::Var& json);

} // namespace connector::configuration::detail
