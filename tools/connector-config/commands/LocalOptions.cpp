#include "commands/OptionReader.hpp"

namespace connector_config {

OptionReader::OptionValue LocalOptions::value(const std::string& key) {
    return configuration.get(key).get();
}

OptionReader::Option LocalOptions::option(const std::string& key) {
    return configuration.getOption(key).get();
}

std::vector<std::string> LocalOptions::keys(const std::string& prefix) {
    const std::set<std::string> all = configuration.keys().get();
    std::vector<std::string> matching;
    for (auto key = all.lower_bound(prefix); key != all.end(); ++key) {
        if (key->compare(0, prefix.size(), prefix) != 0)
            break; // the set is sorted, so all matching keys are adjacent
        matching.push_back(*key);
    }
    return matching;
}

std::vector<OptionReader::Option> LocalOptions::options(const std::string& prefix) {
    std::vector<Option> options;
    for (const std::string& key : keys(prefix))
        options.push_back(option(key));
    return options;
}

std::vector<OptionReader::SourceAnswer> LocalOptions::explain(const std::string& key) {
    return configuration.explain(key);
}

} // namespace connector_config
