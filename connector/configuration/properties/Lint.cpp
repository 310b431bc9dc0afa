#include <connector/configuration/properties/Lint.hpp>

#include <connector/configuration/properties/lint/Comparison.hpp>
#include <connector/configuration/properties/lint/Description.hpp>
#include <connector/configuration/properties/lint/Explanation.hpp>
#include <connector/configuration/properties/lint/Fixer.hpp>
#include <connector/configuration/properties/lint/Habits.hpp>

#include <algorithm>
#include <iterator>
#include <tuple>

namespace connector::configuration::properties {

namespace {

using namespace detail;

/// The lines of a text, which end with LF, CR LF or CR.
class Lines {
public:
    explicit Lines(std::string_view text) : starts{0} {
        for (std::size_t i = text.find_first_of("\r\n"); i < text.size();
             i = text.find_first_of("\r\n", i)) {
            i += text.compare(i, 2, "\r\n") == 0 ? 2 : 1;
            starts.push_back(i);
        }
    }

    /// @return the number of the line, from 1
    std::size_t lineOf(std::size_t offset) const {
        return static_cast<std::size_t>(std::upper_bound(starts.begin(), starts.end(), offset) -
                                        starts.begin());
    }

    std::size_t columnOf(std::size_t offset) const {
        return offset - starts[lineOf(offset) - 1] + 1;
    }

private:
    std::vector<std::size_t> starts;
};

std::string readAll(std::istream& stream) {
    std::string text;
    char buffer[4096];
    while (stream.read(buffer, sizeof buffer) || stream.gcount() > 0)
        text.append(buffer, static_cast<std::size_t>(stream.gcount()));
    return text;
}

/// @return the differences, in the order of the file
std::vector<Reason> differences(const Comparison& files) {
    std::vector<Reason> all;
    for (const Segment& segment : files.segments) {
        if (!segment.differs)
            continue;
        const std::string description = describe(files, segment);
        for (Reason& reason : explain(files, segment)) {
            reason.text += ": " + description;
            all.push_back(std::move(reason));
        }
    }
    return all;
}

} // namespace

std::vector<Finding> lint(std::istream& properties) {
    const std::string text = readAll(properties);
    const Comparison files = compare(text);
    const Lines lines(text);
    std::vector<Reason> reasons = differences(files);
    std::vector<Reason> others =
        habits(files, [&lines](std::size_t offset) { return lines.lineOf(offset); });
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

std::string fixed(std::string_view properties) {
    return withoutDifferences(properties);
}

} // namespace connector::configuration::properties
