#include <connector/configuration/properties/Lint.hpp>

#include <connector/configuration/properties/lint/Comparison.hpp>
#include <connector/configuration/properties/lint/Description.hpp>
#include <connector/configuration/properties/lint/Explanation.hpp>
#include <connector/configuration/properties/lint/Fixer.hpp>
#include <connector/configuration/properties/lint/Habits.hpp>
#include <connector/configuration/properties/lint/Lines.hpp>
#include <connector/configuration/properties/lint/Writing.hpp>

#include <algorithm>
#include <iterator>
#include <tuple>

namespace connector::configuration::properties {

namespace {

using namespace detail;

std::string readAll(std::istream& stream) {
    std::string text;
    char buffer[4096];
    while (stream.read(buffer, sizeof buffer) || stream.gcount() > 0)
        text.append(buffer, static_cast<std::size_t>(stream.gcount()));
    return text;
}

/// @return the differences, in the order of the file
std::vector<Reason> differences(const Comparison& files, const IsSecret& isSecret) {
    std::vector<Reason> all;
    for (const Segment& segment : files.segments) {
        if (!segment.differs)
            continue;
        const std::string description = describe(files, segment, isSecret);
        for (Reason& reason : explain(files, segment)) {
            reason.text += ": " + description;
            all.push_back(std::move(reason));
        }
    }
    return all;
}

} // namespace

std::vector<Finding> lint(std::istream& properties) {
    return lint(properties, [](std::string_view) { return false; });
}

std::vector<Finding> lint(std::istream& properties, const IsSecret& isSecret) {
    const std::string text = readAll(properties);
    const Comparison files = compare(text);
    const Lines lines(text);
    std::vector<Reason> reasons = differences(files, isSecret);
    std::vector<Reason> others = habits(files, lines, isSecret);
    std::move(others.begin(), others.end(), std::back_inserter(reasons));
    std::stable_sort(reasons.begin(), reasons.end(), [](const Reason& left, const Reason& right) {
        return std::tie(left.offset, left.rule) < std::tie(right.offset, right.rule);
    });
    std::vector<Finding> findings;
    for (Reason& reason : reasons)
        findings.push_back({lines.lineOf(reason.offset), lines.columnOf(reason.offset), reason.rule,
                            std::move(reason.text)});
    return findings;
}

std::string fixed(std::string_view properties, const std::set<Rule>& ignored) {
    return withoutDifferences(properties, ignored);
}

std::string propertyLine(std::string_view key, std::string_view value) {
    return written(key, value);
}

std::vector<PlacedProperty> placedProperties(std::string_view text) {
    const Lines lines(text);
    std::vector<PlacedProperty> result;
    for (const LibraryProperty& property : readAsLibrary(text).properties) {
        if (property.isStored)
            result.push_back({decoded(text, property.key), decoded(text, property.value),
                              lines.lineOf(property.start), lines.columnOf(property.start)});
    }
    return result;
}

} // namespace connector::configuration::properties
