#include "Commands.hpp"

#include <connector/service/text/Json.hpp>
#include "values/ValueText.hpp"

namespace connector_config {

std::string get(ConfigurationImpl& configuration, const Arguments& arguments) {
    if (arguments.json)
        return toText(toJson(configuration.getOption(arguments.key).get())) + '\n';
    return plainText(configuration.get(arguments.key).get()) + '\n';
}

} // namespace connector_config
