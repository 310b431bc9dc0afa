#include "comparing/Differences.hpp"

#include <connector/configuration/planning/Plan.hpp>

#include <algorithm>
#include <map>

namespace connector_config {

using connector::configuration::planning::isSameValue;

void addDifference(Differences& result, const std::optional<Option>& before,
                   const std::optional<Option>& after, bool isMasked, bool comparesSources) {
    const auto add = [&](DifferenceKind kind, const Option& option) {
        result.differences.push_back({kind, option.key, before, after});
    };
    if (!before)
        return add(DifferenceKind::Added, *after);
    if (!after)
        return add(DifferenceKind::Removed, *before);
    if (isMasked)
        result.masked.push_back(before->key);
    else if (!isSameValue(before->value, after->value))
        return add(DifferenceKind::Changed, *before);
    if (comparesSources && before->source != after->source)
        add(DifferenceKind::Moved, *before);
}

Differences differencesOf(const ComparedOptions& before, const ComparedOptions& after) {
    struct Pair {
        std::optional<Option> before;
        std::optional<Option> after;
    };
    std::map<std::string, Pair> pairs;
    for (const Option& option : before.options)
        pairs[option.key].before = option;
    for (const Option& option : after.options)
        pairs[option.key].after = option;

    Differences result;
    for (const auto& [key, pair] : pairs)
        addDifference(result, pair.before, pair.after,
                      before.masked.count(key) + after.masked.count(key) != 0,
                      before.hasSources && after.hasSources);
    return result;
}

} // namespace connector_config
