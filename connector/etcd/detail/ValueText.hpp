/// Option values as the texts that etcd holds.
///
/// A text that is a JSON object with the member "type" must be {"type": T, "value": V}, with the
/// types and payloads of OptionValueJson.hpp, exactly: no other and no repeated member, integers
/// without fraction or exponent and in the range of the type. A double may be an integer that a
/// double holds exactly, or one of the strings "inf", "-inf" and "nan". Every other UTF-8 text is a
/// std::string.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace connector::etcd::detail {

/// @return the value; nothing if the text cannot be read
std::optional<configuration::OptionValue> readValue(std::string_view text);

/// @return a text that readValue reads as the same value. A string is written as it is, unless that
///         would be read otherwise.
/// @throws std::invalid_argument "Text is not valid UTF-8" or "Text is not valid UTF-16"
std::string writeValue(const configuration::OptionValue& value);

} // namespace connector::etcd::detail
