#include "Commands.hpp"

#include "Secrets.hpp"
#include "serve/Http.hpp"
#include "serve/StandardInput.hpp"

namespace connector_config {

void serveMessages(ConfigurationImpl& configuration, const Arguments& arguments) {
    if (arguments.http)
        serve::serveHttp(configuration, *arguments.http, Secrets(arguments.secrets));
    else
        serve::serveStandardInput(configuration.getPtr());
}

} // namespace connector_config
