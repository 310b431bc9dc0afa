#include "network/RemoteOptions.hpp"

#include <optional>
#include <set>
#include <stdexcept>

namespace connector_config {

OptionReader::OptionValue RemoteOptions::value(const std::string& key) {
    return option(key).value;
}

OptionReader::Option RemoteOptions::option(const std::string& key) {
    std::optional<Option> found = client.get(key);
    if (!found)
        throw std::runtime_error("No option with the specified key was found: " + key);
    return *found;
}

std::vector<OptionReader::Answer> RemoteOptions::answers(const std::vector<std::string>& keys) {
    std::vector<Answer> answers;
    for (const std::string& key : keys) {
        try {
            answers.push_back({option(key), ""});
        } catch (const std::exception& failure) {
            answers.push_back({std::nullopt, failure.what()});
        }
    }
    return answers;
}

std::vector<std::string> RemoteOptions::keys(const std::string& prefix) {
    const std::set<std::string> keys = client.keys(prefix);
    return {keys.begin(), keys.end()};
}

std::vector<OptionReader::Option> RemoteOptions::options(const std::string& prefix) {
    return client.list(prefix);
}

std::vector<OptionReader::SourceAnswer> RemoteOptions::explain(const std::string& key) {
    return client.explain(key);
}

} // namespace connector_config
