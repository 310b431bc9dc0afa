#include "commands/Commands.hpp"

#include "values/ValueText.hpp"

#include <connector/service/text/Json.hpp>

namespace connector_config {

std::string get(ConfigurationImpl& configuration, const Arguments& arguments) {
    if (arguments.json) {
        const auto option = configuration.getOption(arguments.key).get();
        return connector::service::jsonText(connector::service::toJson(option)) + '\n';
    }
    return plainText(configuration.get(arguments.key).get()) + '\n';
}

} // namespace connector_config
