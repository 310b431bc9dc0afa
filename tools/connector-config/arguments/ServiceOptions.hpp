/// The grammar of the options for a running service.
#pragma once

#include <connector/service/HttpClientOptions.hpp>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace connector_config {

/// Declares --url, and the options that require it, to CLI11, which fills this object.
class ServiceOptions {
public:
    /// @param app  the program, which must outlive this object
    void declare(CLI::App& app);

    /// @return the argument of --url; nothing if it was not given. Behind diff, --url is an option
    ///         of that command.
    std::optional<std::string> url() const;

    /// @return the service at this URL, with the other options
    /// @throws WrongArguments "Not of the form http://HOST:PORT, https://HOST:PORT or unix:PATH:
    ///         URL", "Name of a file is empty: OPTION"
    connector::service::HttpClientOptions serviceAt(const std::string& text) const;

    /// Checks that the other options have a service to be used with. diff can have two, of which
    /// one may have no TLS.
    /// @param services  all that the command asks
    /// @throws WrongArguments "OPTION requires --url", or "OPTION requires a URL with https: URL"
    ///         with the first URL
    void check(const std::vector<connector::service::HttpClientOptions>& services) const;

private:
    CLI::Option* add(CLI::App& app, const char* name, const char* type);

    std::map<std::string, std::string> texts;
    CLI::Option* urlOption = nullptr;
    CLI::Option* tokenFile = nullptr;
    CLI::Option* authority = nullptr;
    CLI::Option* certificate = nullptr;
    CLI::Option* key = nullptr;
};

} // namespace connector_config
