#include "arguments/CheckRules.hpp"

#include <connector/configuration/properties/Finding.hpp>

#include <algorithm>

namespace connector_config {

namespace {

std::vector<CheckRule> makeRules() {
    std::vector<CheckRule> rules;
    for (const auto& rule : connector::configuration::properties::rules())
        rules.push_back({rule.name, rule.text});
    rules.push_back({syntaxRule, "A JSON, YAML or TOML file cannot be parsed."});
    rules.push_back({unknownOptionRule, "The schema declares no such option."});
    rules.push_back({invalidValueRule, "The schema does not allow the value of an option."});
    rules.push_back({missingOptionRule, "An option that the schema requires is missing."});
    return rules;
}

} // namespace

const std::vector<CheckRule>& checkRules() {
    static const std::vector<CheckRule> rules = makeRules();
    return rules;
}

bool isCheckRule(std::string_view name) {
    const std::vector<CheckRule>& rules = checkRules();
    return std::any_of(rules.begin(), rules.end(),
                       [name](const CheckRule& rule) { return rule.name == name; });
}

} // namespace connector_config
