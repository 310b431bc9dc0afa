#include <connector/configuration/properties/lint/Explanation.hpp>

#include <connector/configuration/properties/lint/EscapeReasons.hpp>
#include <connector/configuration/properties/lint/PropertyReasons.hpp>

#include <algorithm>
#include <iterator>
#include <tuple>

namespace connector::configuration::properties::detail {

std::vector<Reason> explain(const Comparison& files, const Segment& segment) {
    std::vector<Reason> reasons;
    // Both begin the first property together. Once they are out of step, only escapes that both
    // read as escapes can be compared, and all properties behind are.
    if (segment.firstOfLibrary != segment.lastOfLibrary)
        reasons = PropertyReasons(files, segment).find();
    std::vector<Reason> escapes = escapeReasons(files, segment);
    std::move(escapes.begin(), escapes.end(), std::back_inserter(reasons));
    if (reasons.empty())
        reasons.push_back({segment.begin, Rule::Difference, "this is read differently"});
    std::stable_sort(reasons.begin(), reasons.end(), [](const Reason& left, const Reason& right) {
        return std::tie(left.offset, left.rule) < std::tie(right.offset, right.rule);
    });
    return reasons;
}

} // namespace connector::configuration::properties::detail
