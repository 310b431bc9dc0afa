#include "comparing/SnapshotOptions.hpp"

#include <algorithm>
#include <stdexcept>

namespace connector_config {

OptionReader::OptionValue SnapshotOptions::value(const std::string& key) {
    checkIsKnown(key);
    return local.value(key);
}

OptionReader::Option SnapshotOptions::option(const std::string& key) {
    checkIsKnown(key);
    return local.option(key);
}

/// Asks with explain, which writes no diagnostic line.
void SnapshotOptions::checkIsKnown(const std::string& key) {
    if (snapshot.empty())
        return; // the sources are no snapshot
    const std::vector<SourceAnswer> answers = local.explain(key);
    const auto supplier =
        std::find_if(answers.begin(), answers.end(),
                     [](const SourceAnswer& answer) { return answer.value.has_value(); });
    if (supplier != answers.end() && isMasked(snapshot, supplier->name, key))
        throw std::runtime_error("Value is masked in the snapshot: " + key);
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
