#include "commands/OptionReader.hpp"

namespace connector_config {

OptionReader::OptionValue LocalOptions::value(const std::string& key) {
    return configuration.get(key).get();
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
    return configuration.optionsBelow(prefix);
}

/// The configuration answers in the order of the keys and leaves out what is missing.
std::vector<OptionReader::Answer> LocalOptions::answers(const std::vector<std::string>& keys) {
    std::vector<Option> options = configuration.optionsOf(keys);
    auto next = options.begin();
    std::vector<Answer> answers;
    for (const std::string& key : keys) {
        if (next != options.end() && next->key == key)
            answers.push_back({std::move(*next++), ""});
        else
            answers.push_back({std::nullopt, "No option with the specified key was found: " + key});
    }
    return answers;
}

std::vector<OptionReader::SourceAnswer> LocalOptions::explain(const std::string& key) {
    return configuration.explain(key);
}

} // namespace connector_config
