/// The grammar of serve --http.
#pragma once

#include <connector/service/HttpOptions.hpp>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace connector_config {

/// Declares the HTTP options of serve to CLI11, which fills this object.
class ServeOptions {
public:
    /// @param command  the command serve, which must outlive this object
    void declare(CLI::App& command);

    /// @return nothing without --http: the messages then come from standard input
    /// @throws WrongArguments
    std::optional<connector::service::HttpOptions> collect() const;

private:
    CLI::Option* add(CLI::App& command, const char* name, const char* type);

    std::vector<std::string> addresses;
    std::vector<std::string> writablePrefixes;
    std::vector<std::string> allowedHosts;
    std::map<std::string, std::string> texts; // of options with one value
    CLI::Option* http = nullptr;
    CLI::Option* propertyRoot = nullptr;
    CLI::Option* tokenFile = nullptr;
    CLI::Option* maxFileSize = nullptr;
    CLI::Option* certificate = nullptr;
    CLI::Option* key = nullptr;
    CLI::Option* clientAuthority = nullptr;
};

} // namespace connector_config
