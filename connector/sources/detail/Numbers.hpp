/// Converts the numbers of documents to option values.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <optional>
#include <string>

namespace connector::sources::detail {

/// @param text  an optional sign and any number of digits
/// @return an int if it fits, else an unsigned int, else an exact double; nothing if there is none
std::optional<configuration::OptionValue> decimalInteger(const std::string& text);

/// @param digits  of hexadecimal or octal numbers, without prefix
/// @param bitsPerDigit  4 or 3
/// @return the same types as decimalInteger
std::optional<configuration::OptionValue> binaryInteger(const std::string& digits,
                                                        unsigned bitsPerDigit);

/// @param text  a decimal number, with or without fraction and exponent
/// @return the nearest double; nothing if it is beyond the range
std::optional<double> decimalFraction(const std::string& text);

} // namespace connector::sources::detail
