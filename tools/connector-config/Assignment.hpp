/// KEY[:TYPE]=VALUE
#pragma once

#include "ValueType.hpp"

#include <string>

namespace connector_config {

struct Assignment {
    std::string key;
    OptionValue value;
};

/// KEY ends at the first "=". Its part behind the last ":" is the type if it names one, and belongs to
/// KEY if it does not; without a type the value is a string. KEY must not be empty.
/// @throws WrongArguments
Assignment parseAssignment(const std::string& text);

} // namespace connector_config
