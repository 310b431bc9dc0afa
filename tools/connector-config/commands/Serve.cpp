#include "Commands.hpp"

#include <connector/service/text/Secrets.hpp>
#include "commands/ServeHttp.hpp"
#include "commands/ServeStandardInput.hpp"

namespace connector_config {

void serveMessages(ConfigurationImpl& configuration, const Arguments& arguments) {
    if (arguments.http)
        serve::serveHttp(configuration, *arguments.http, Secrets(arguments.secrets));
    else
        serve::serveStandardInput(configuration.getPtr());
}

} // namespace connector_config
