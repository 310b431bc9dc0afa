#include "arguments/ServiceOptions.hpp"

#include "arguments/LiteralArguments.hpp"
#include "values/WrongArguments.hpp"

#include <connector/service/client/ServiceUrl.hpp>

#include <CLI/CLI.hpp>

namespace connector_config {

using connector::service::HttpClientOptions;

void ServiceOptions::declare(CLI::App& app) {
    urlOption = add(app, "--url", "URL");
    tokenFile = add(app, "--token-file", "FILE");
    authority = add(app, "--ca", "FILE");
}

std::optional<std::string> ServiceOptions::url() const {
    return textOf(*urlOption);
}

void ServiceOptions::requireUrl() const {
    for (const CLI::Option* const option : {tokenFile, authority}) {
        if (option->count() > 0)
            throw WrongArguments(option->get_name() + " requires --url");
    }
}

HttpClientOptions ServiceOptions::collect() const {
    HttpClientOptions service = serviceAt(*url());
    if (authority->count() > 0 && service.url.compare(0, 6, "https:") != 0)
        throw WrongArguments("--ca requires a URL with https: " + service.url);
    return service;
}

HttpClientOptions ServiceOptions::serviceAt(const std::string& text) const {
    if (!connector::service::parseServiceUrl(text))
        throw WrongArguments("Not of the form http://HOST:PORT, https://HOST:PORT or unix:PATH: " +
                             text);
    HttpClientOptions service;
    service.url = text;
    service.tokenFile = textOf(*tokenFile);
    service.authority = textOf(*authority).value_or("");
    return service;
}

CLI::Option* ServiceOptions::add(CLI::App& app, const char* name, const char* type) {
    return app.add_option(name, texts[name])->type_name(type);
}

} // namespace connector_config
