/// KEY[:TYPE]=VALUE
#pragma once

#include "values/ValueType.hpp"
#include <connector/service/text/Secrets.hpp>

#include <string>

namespace connector_config {

using connector::service::Secrets;

struct Assignment {
    std::string key;
    OptionValue value;
};

/// KEY ends at the first "=". Its part behind the last ":" is the type if it names one, and belongs to
/// KEY if it does not; without a type the value is a string. KEY must not be empty.
/// @param secrets  whose values a failure does not show
/// @throws WrongArguments
Assignment parseAssignment(const std::string& text, const Secrets& secrets);

} // namespace connector_config
