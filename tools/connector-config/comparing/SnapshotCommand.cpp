#include "comparing/SnapshotCommand.hpp"

#include <connector/configuration/json/Snapshot.hpp>
#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Secrets.hpp>

#include <sstream>

namespace connector_config {

namespace {

using connector::configuration::SecretFilter;
using connector::service::Secrets;

SecretFilter filterOf(const Arguments& arguments) {
    if (arguments.withSecrets)
        return {};
    return [secrets = Secrets(arguments.secrets)](const std::string& key) {
        return secrets.isSecret(key);
    };
}

/// Escapes control characters, which are safe in a file, but not on a terminal.
std::string escapedLines(const std::string& document) {
    std::istringstream lines(document);
    std::string text;
    for (std::string line; std::getline(lines, line);)
        text += connector::service::escapedJson(line) + '\n';
    return text;
}

} // namespace

std::string snapshotOf(connector::configuration::ConfigurationImpl& configuration,
                       const Arguments& arguments, const Snapshot& previous) {
    Snapshot snapshot = configuration.snapshot();
    for (auto& source : snapshot) {
        for (auto& [key, entry] : source.entries)
            entry.isMasked = isMasked(previous, source.name, source.group + key);
    }
    std::ostringstream document;
    connector::configuration::writeSnapshot(document, snapshot, filterOf(arguments));
    return escapedLines(document.str());
}

} // namespace connector_config
