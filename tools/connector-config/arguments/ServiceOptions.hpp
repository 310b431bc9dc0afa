/// The grammar of the options for a running service.
#pragma once

#include <connector/service/HttpClientOptions.hpp>

#include <map>
#include <optional>
#include <string>

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

    /// Called if there is no --url, not even behind diff.
    /// @throws WrongArguments "OPTION requires --url" if an option was given that requires it
    void requireUrl() const;

    /// @return the service at url()
    /// @throws WrongArguments if a service at that URL cannot be used with the other options
    connector::service::HttpClientOptions collect() const;

    /// @return the service at this URL, with the other options
    /// @throws WrongArguments "Not of the form http://HOST:PORT, https://HOST:PORT or unix:PATH:
    ///         URL"
    connector::service::HttpClientOptions serviceAt(const std::string& text) const;

private:
    CLI::Option* add(CLI::App& app, const char* name, const char* type);

    std::map<std::string, std::string> texts;
    CLI::Option* urlOption = nullptr;
    CLI::Option* tokenFile = nullptr;
    CLI::Option* authority = nullptr;
};

} // namespace connector_config
