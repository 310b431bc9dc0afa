#include "arguments/ServeOptions.hpp"

#include "arguments/ListenAddress.hpp"
#include "arguments/LiteralArguments.hpp"
#include "values/WrongArguments.hpp"

#include <connector/service/text/Number.hpp>

#include <CLI/CLI.hpp>

namespace connector_config {

using connector::service::HttpOptions;

namespace {

std::uintmax_t parseSize(const std::string& text) {
    const auto size = connector::service::readNumber<std::uintmax_t>(text);
    if (!size)
        throw WrongArguments("Not a number of bytes: " + text);
    return *size;
}

CLI::Option* addRepeatable(CLI::App& command, const char* name, std::vector<std::string>& texts,
                           const char* type) {
    return command.add_option(name, texts)->type_name(type)->allow_extra_args(false);
}

} // namespace

void ServeOptions::declare(CLI::App& command) {
    http = addRepeatable(command, "--http", addresses, "HOST:PORT|unix:PATH");
    addRepeatable(command, "--writable", writablePrefixes, "PREFIX")->needs(http);
    addRepeatable(command, "--allow-host", allowedHosts, "NAME")->needs(http);
    propertyRoot = add(command, "--property-root", "DIR");
    tokenFile = add(command, "--token-file", "FILE");
    maxFileSize = add(command, "--max-file-size", "BYTES");
    certificate = add(command, "--tls-cert", "FILE");
    key = add(command, "--tls-key", "FILE");
    clientAuthority = add(command, "--client-ca", "FILE");
    certificate->needs(key);
    key->needs(certificate);
    clientAuthority->needs(certificate);
}

std::optional<HttpOptions> ServeOptions::collect() const {
    if (http->count() == 0)
        return std::nullopt;
    HttpOptions options;
    options.addresses.clear();
    for (const std::string& address : addresses)
        options.addresses.push_back(parseListenAddress(unmarked(address)));
    options.writablePrefixes = writablePrefixes;
    unmarkAll(options.writablePrefixes);
    for (const std::string& name : allowedHosts)
        options.allowedHosts.push_back(parseHostName(unmarked(name)));
    options.propertyRoot = textOf(*propertyRoot);
    options.tokenFile = textOf(*tokenFile);
    if (const auto size = textOf(*maxFileSize))
        options.maxFileSize = parseSize(*size);
    if (const auto file = textOf(*certificate))
        options.tls = {*file, *textOf(*key), textOf(*clientAuthority).value_or("")};
    return options;
}

CLI::Option* ServeOptions::add(CLI::App& command, const char* name, const char* type) {
    return command.add_option(name, texts[name])->type_name(type)->needs(http);
}

} // namespace connector_config
