#include "network/RemoteCommands.hpp"

#include "commands/ChangeText.hpp"
#include "commands/Sources.hpp"
#include "display/Output.hpp"

#include <connector/service/text/Secrets.hpp>

#include <algorithm>
#include <set>
#include <string>

namespace connector_config {

using connector::service::Secrets;
using connector::service::ServiceError;

namespace {

void reportMissing(HttpClient& client, const std::set<std::string>& keys) {
    for (const std::string& key : keys) {
        if (!client.get(key))
            printError("No value yet: " + key);
    }
}

/// Reports each reason once, however many attempts to connect fail for it.
class LossReport {
public:
    void lost(const ServiceError& error) {
        if (error.what() == reported)
            return;
        reported = error.what();
        printError(reported);
    }

    /// The service is back: the next loss is another one.
    void reached() { reported.clear(); }

private:
    std::string reported;
};

} // namespace

void setRemotely(HttpClient& client, const Arguments& arguments) {
    warnOfUnknownType(*arguments.assignment);
    client.set(arguments.assignment->key, arguments.assignment->value);
}

void watchRemotely(HttpClient& client, const Arguments& arguments) {
    const std::vector<std::string>& keys = arguments.keys;
    const Secrets secrets(arguments.secrets);
    LossReport report;
    reportMissing(client, {keys.begin(), keys.end()});
    client.watch(
        {keys, {}},
        [&](const connector::configuration::Option& option) {
            report.reached();
            const std::string text = changeText(secrets.masked(option), arguments.json);
            for (auto left = std::count(keys.begin(), keys.end(), option.key); left > 0; --left)
                writeOutput(text); // once for each time that the key is in the arguments
        },
        [&](const ServiceError& error) { report.lost(error); });
}

} // namespace connector_config
