#include "Commands.hpp"

#include "values/ValueText.hpp"
#include <connector/service/text/Json.hpp>

namespace connector_config {

using connector::service::toJson;
using connector::service::toText;

std::string get(ConfigurationImpl& configuration, const Arguments& arguments) {
    if (arguments.json)
        return toText(toJson(configuration.getOption(arguments.key).get())) + '\n';
    return plainText(configuration.get(arguments.key).get()) + '\n';
}

} // namespace connector_config
