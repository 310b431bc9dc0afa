#include "arguments/Assignment.hpp"

#include "values/ValueReading.hpp"
#include "values/WrongArguments.hpp"

namespace connector_config {

Assignment parseAssignment(const std::string& text, const Secrets& secrets) {
    const std::size_t equalsSign = text.find('=');
    if (equalsSign == std::string::npos)
        throw WrongArguments("Not of the form KEY[:TYPE]=VALUE: " + text);
    std::string key = text.substr(0, equalsSign);

    ValueType type = ValueType::String;
    const std::size_t colon = key.rfind(':');
    if (colon != std::string::npos) {
        if (const auto named = typeFromName(key.substr(colon + 1))) {
            type = *named;
            key.resize(colon);
        }
    }
    if (key.empty())
        throw WrongArguments("Not of the form KEY[:TYPE]=VALUE: " + text);
    OptionValue value = readValue(type, text.substr(equalsSign + 1), secrets.isSecret(key));
    return {std::move(key), std::move(value)};
}

} // namespace connector_config
