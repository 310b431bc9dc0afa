#include "arguments/Assignment.hpp"

#include "values/ValueReading.hpp"
#include "values/WrongArguments.hpp"

#include <algorithm>

namespace connector_config {

namespace {

/// @return whether the text could be meant as the name of a type: ASCII letters only
bool looksLikeType(const std::string& text) {
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return !text.empty() && std::all_of(text.begin(), text.end(), isLetter);
}

} // namespace

Assignment parseAssignment(const std::string& text, const Secrets& secrets) {
    const std::size_t equalsSign = text.find('=');
    if (equalsSign == std::string::npos)
        throw WrongArguments("Not of the form KEY[:TYPE]=VALUE: " + text);
    std::string key = text.substr(0, equalsSign);

    ValueType type = ValueType::String;
    bool hasUnknownType = false;
    const std::size_t colon = key.rfind(':');
    if (colon != std::string::npos) {
        const std::string name = key.substr(colon + 1);
        if (const auto named = typeFromName(name)) {
            type = *named;
            key.resize(colon);
        } else {
            hasUnknownType = looksLikeType(name);
        }
    }
    if (key.empty())
        throw WrongArguments("Not of the form KEY[:TYPE]=VALUE: " + text);
    OptionValue value = readValue(key, type, text.substr(equalsSign + 1), secrets.isSecret(key));
    return {std::move(key), std::move(value), hasUnknownType};
}

} // namespace connector_config
