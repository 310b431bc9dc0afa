/// What is wrong with one option.
#pragma once

#include <connector/Export.hpp>

#include <stdexcept>
#include <string>
#include <vector>

namespace connector::configuration {

struct OptionProblem {
    std::string key;    ///< the full key; for a rule, the prefix of its schema
    std::string source; ///< that supplies the value; empty when there is none, and for rules
    std::string text;   ///< "is required", "must be between 1 and 65535: 0", ...

    friend bool operator==(const OptionProblem& left, const OptionProblem& right) {
        return left.key == right.key && left.source == right.source && left.text == right.text;
    }
};

/// @return "KEY from SOURCE: TEXT", or "KEY: TEXT" without a source
CONNECTOR_EXPORT std::string describe(const OptionProblem& problem);

} // namespace connector::configuration
