#include "Commands.hpp"

#include "commands/ServeHttp.hpp"
#include "commands/ServeStandardInput.hpp"
#include <connector/service/text/Secrets.hpp>

namespace connector_config {

using connector::service::Secrets;

void serveMessages(ConfigurationImpl& configuration, const Arguments& arguments) {
    if (arguments.http)
        serveHttp(configuration, *arguments.http, Secrets(arguments.secrets));
    else
        serveStandardInput(configuration.getPtr());
}

} // namespace connector_config
