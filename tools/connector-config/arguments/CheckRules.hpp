/// The rules of check.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace connector_config {

struct CheckRule {
    std::string_view name;
    std::string_view text; ///< when it is broken; one sentence
};

// Rules that are not about the text of property files.
inline constexpr std::string_view syntaxRule = "syntax";
inline constexpr std::string_view unknownOptionRule = "unknown-option";
inline constexpr std::string_view invalidValueRule = "invalid-value";
inline constexpr std::string_view missingOptionRule = "missing-option";

/// @return the rules of the library's checker, and then those above
const std::vector<CheckRule>& checkRules();

bool isCheckRule(std::string_view name);

} // namespace connector_config
