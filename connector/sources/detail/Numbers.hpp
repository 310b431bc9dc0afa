/// Numbers of documents as values of options.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <optional>
#include <string>

namespace connector::sources::detail {

/// @param text  an optional sign and digits, as many as there may be
/// @return an int if it fits, else an unsigned int, else a double that is exact; nothing if there
///        is none
std::optional<configuration::OptionValue> decimalInteger(const std::string& text);

/// @param digits  of hexadecimal or octal numbers, without prefix
/// @param bitsPerDigit  4 or 3
/// @return as decimalInteger
std::optional<configuration::OptionValue> binaryInteger(const std::string& digits,
                                                        unsigned bitsPerDigit);

/// @param text  a decimal number, with or without fraction and exponent
/// @return the nearest double; nothing if it is beyond the range
std::optional<double> decimalFraction(const std::string& text);

} // namespace connector::sources::detail
