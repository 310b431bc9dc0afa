/// The options of a running service, for the commands that read.
#pragma once

#include "commands/OptionReader.hpp"

#include <connector/service/HttpClient.hpp>

#include <string>
#include <vector>

namespace connector_config {

/// Asks a service.
class RemoteOptions : public OptionReader {
public:
    /// @param newClient  must outlive this object
    explicit RemoteOptions(connector::service::HttpClient& newClient) : client(newClient) {}

    OptionValue value(const std::string& key) override;
    std::vector<Answer> answers(const std::vector<std::string>& keys) override;
    std::vector<std::string> keys(const std::string& prefix) override;
    std::vector<Option> options(const std::string& prefix) override;
    std::vector<SourceAnswer> explain(const std::string& key) override;

private:
    Option option(const std::string& key);

    connector::service::HttpClient& client;
};

} // namespace connector_config
