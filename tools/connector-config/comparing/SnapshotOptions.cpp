#include "comparing/SnapshotOptions.hpp"

#include <algorithm>
#include <stdexcept>

namespace connector_config {

namespace {

std::string maskedText(const std::string& key) {
    return "Value is masked in the snapshot: " + key;
}

} // namespace

OptionReader::OptionValue SnapshotOptions::value(const std::string& key) {
    if (isMaskedIn(key))
        throw std::runtime_error(maskedText(key));
    return local.value(key);
}

std::vector<OptionReader::Answer> SnapshotOptions::answers(const std::vector<std::string>& keys) {
    std::vector<Answer> answers = local.answers(keys);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (isMaskedIn(keys[i]))
            answers[i] = {std::nullopt, maskedText(keys[i])};
    }
    return answers;
}

/// Asks with explain, which writes no diagnostic line.
bool SnapshotOptions::isMaskedIn(const std::string& key) {
    if (snapshot.empty())
        return false; // the sources are no snapshot
    const std::vector<SourceAnswer> answers = local.explain(key);
    const auto supplier =
        std::find_if(answers.begin(), answers.end(),
                     [](const SourceAnswer& answer) { return answer.value.has_value(); });
    return supplier != answers.end() && isMasked(snapshot, supplier->name, key);
}

void checkNothingIsMasked(const Snapshot& snapshot) {
    for (const auto& source : snapshot) {
        for (const auto& [key, entry] : source.entries) {
            if (entry.isMasked)
                throw std::runtime_error("Masked values cannot be served: " + source.group + key +
                                         " in " + source.name);
        }
    }
}

} // namespace connector_config
