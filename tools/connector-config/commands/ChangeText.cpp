#include "commands/ChangeText.hpp"

#include "values/ValueText.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

namespace connector_config {

using connector::service::escaped;
using connector::service::jsonText;
using connector::service::toJson;

std::string changeText(const connector::configuration::Option& option, bool json) {
    if (json)
        return jsonText(toJson(option)) + '\n';
    return escaped(option.key) + " = " + displayText(option.value) + "  (" +
           escaped(option.source) + ")\n";
}

} // namespace connector_config
