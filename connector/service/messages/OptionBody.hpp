/// The value of an option in the body of a request to set it. Unlike messages, which are read
/// tolerantly, nothing is converted: a body either is a value of exactly one type, or is refused.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <stdexcept>
#include <string_view>

namespace connector::service {

/// A body is not JSON, or not UTF-8.
class NotJson : public std::invalid_argument {
public:
    using invalid_argument::invalid_argument;
};

/// A body is JSON, but not the value of an option.
class UnacceptableValue : public std::invalid_argument {
public:
    using invalid_argument::invalid_argument;
};

/// A body has one of two forms:
///
/// - {"type": TAG, "value": PAYLOAD}, with both members and no others. The payload must be of that
///   type: an integer has neither a fraction nor an exponent, and is in the range of its type.
/// - A boolean, a number, a string, or an array of one of these. An integer becomes the first of
///   int, unsigned int and double that holds it exactly, any other number a double. An array of
///   numbers gets the first element type that holds all of them. An empty array has strings.
///
/// Integers that a double does not hold exactly, and numbers beyond its range, are refused.
/// May be called from any thread.
/// @throws NotJson "Text is not valid UTF-8" or "Text is not valid JSON: " + reason
/// @throws UnacceptableValue with the reason, which contains nothing of the body
/// @throws TooManyElements if the elements would take more than `maxElementMemory`
configuration::OptionValue readOptionBody(std::string_view body);

} // namespace connector::service
