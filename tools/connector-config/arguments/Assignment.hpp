/// Parses KEY[:TYPE]=VALUE.
#pragma once

#include "values/ValueType.hpp"

#include <connector/service/text/Secrets.hpp>

#include <string>

namespace connector_config {

using connector::service::Secrets;

struct Assignment {
    std::string key;
    OptionValue value;
    bool hasUnknownType = false; ///< the key ends in ":" and letters, probably a mistyped TYPE
};

/// KEY and TYPE end at the first "=". The text after the last ":" before it is the type if it names
/// one; otherwise it belongs to KEY and the value is a string. KEY must not be empty.
/// @param secrets  keys whose values are masked in failures
/// @throws WrongArguments
Assignment parseAssignment(const std::string& text, const Secrets& secrets);

} // namespace connector_config
