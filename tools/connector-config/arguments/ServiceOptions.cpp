#include "arguments/ServiceOptions.hpp"

#include "arguments/LiteralArguments.hpp"
#include "values/WrongArguments.hpp"

#include <connector/service/client/ServiceUrl.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace connector_config {

using connector::service::HttpClientOptions;

namespace {

/// An empty name would mean that the client has no certificate.
std::string fileOf(const CLI::Option& option) {
    const auto name = textOf(option);
    if (name && name->empty())
        throw WrongArguments("Name of a file is empty: " + option.get_name());
    return name.value_or("");
}

bool isTls(const HttpClientOptions& service) {
    return connector::service::parseServiceUrl(service.url)->isTls;
}

void forbid(std::initializer_list<const CLI::Option*> options, const std::string& reason) {
    for (const CLI::Option* const option : options) {
        if (option->count() > 0)
            throw WrongArguments(option->get_name() + reason);
    }
}

} // namespace

void ServiceOptions::declare(CLI::App& app) {
    urlOption = add(app, "--url", "URL");
    tokenFile = add(app, "--token-file", "FILE");
    authority = add(app, "--ca", "FILE");
    certificate = add(app, "--client-cert", "FILE");
    key = add(app, "--client-key", "FILE");
    certificate->needs(key);
    key->needs(certificate);
}

std::optional<std::string> ServiceOptions::url() const {
    return textOf(*urlOption);
}

HttpClientOptions ServiceOptions::serviceAt(const std::string& text) const {
    if (!connector::service::parseServiceUrl(text))
        throw WrongArguments("Not of the form http://HOST:PORT, https://HOST:PORT or unix:PATH: " +
                             text);
    HttpClientOptions service;
    service.url = text;
    service.tokenFile = textOf(*tokenFile);
    service.authority = textOf(*authority).value_or("");
    service.certificate = fileOf(*certificate);
    service.key = fileOf(*key);
    return service;
}

void ServiceOptions::check(const std::vector<HttpClientOptions>& services) const {
    if (services.empty())
        forbid({tokenFile, authority, certificate, key}, " requires --url");
    else if (std::none_of(services.begin(), services.end(), isTls))
        forbid({authority, certificate, key},
               " requires a URL with https: " + services.front().url);
}

CLI::Option* ServiceOptions::add(CLI::App& app, const char* name, const char* type) {
    return app.add_option(name, texts[name])->type_name(type);
}

} // namespace connector_config
