#include <connector/configuration/properties/lint/Fixer.hpp>

#include <connector/configuration/properties/lint/Characters.hpp>
#include <connector/configuration/properties/lint/Comparison.hpp>
#include <connector/configuration/properties/lint/Explanation.hpp>
#include <connector/configuration/properties/lint/Writing.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace connector::configuration::properties::detail {

namespace {

/// @return the line break at the position; empty if there is none
std::string_view lineBreakAt(std::string_view text, std::size_t position) {
    if (text.compare(position, 2, "\r\n") == 0)
        return text.substr(position, 2);
    return position < text.size() && isLineBreak(text[position]) ? text.substr(position, 1)
                                                                 : std::string_view();
}

class Fixer {
public:
    Fixer(std::string_view newText, const std::set<Rule>& newIgnored)
        : text(newText), ignored(newIgnored), files(compare(newText)),
          defaultBreak(
              lineBreakAt(newText, std::min(newText.find_first_of("\r\n"), newText.size()))) {
        if (defaultBreak.empty())
            defaultBreak = "\n";
    }

    std::string fix() {
        for (const Segment& segment : files.segments) {
            if (segment.differs && !isIgnored(segment))
                rewrite(segment);
            else
                result += text.substr(segment.begin, segment.end - segment.begin);
        }
        return std::move(result);
    }

private:
    bool isIgnored(const Segment& segment) const {
        if (ignored.empty())
            return false;
        const std::vector<Reason> reasons = explain(files, segment);
        return std::all_of(reasons.begin(), reasons.end(), [this](const Reason& reason) {
            return ignored.count(reason.rule) != 0;
        });
    }

    void rewrite(const Segment& segment) {
        std::size_t position = segment.begin;
        for (std::size_t i = segment.firstOfLibrary; i < segment.lastOfLibrary; ++i) {
            const LibraryProperty& property = files.library.properties[i];
            // Blank lines and the library's comments
            result += text.substr(position, property.start - position);
            position = property.isStored ? rewriteStored(property) : commentOut(property);
        }
        result += text.substr(position, segment.end - position);
    }

    /// @return where the next line begins
    std::size_t rewriteStored(const LibraryProperty& property) {
        result += rewritten(text, property);
        const bool isAtEnd = !isLineBreak(text[property.end - 1]);
        const std::string_view lineBreak =
            isAtEnd ? defaultBreak : lineBreakAt(text, property.end - 1);
        result += lineBreak;
        return isAtEnd ? text.size() : property.end - 1 + lineBreak.size();
    }

    /// Both readers ignore a comment, as the library ignores the property now.
    std::size_t commentOut(const LibraryProperty& property) {
        bool isLineStart = true;
        for (std::size_t i = property.start; i < text.size(); ++i) {
            if (isLineStart && !isLineBreak(text[i]))
                result += '#';
            isLineStart = isLineBreak(text[i]);
            result += text[i];
        }
        return text.size();
    }

    const std::string_view text;
    const std::set<Rule>& ignored;
    const Comparison files;
    std::string_view defaultBreak;
    std::string result;
};

} // namespace

std::string withoutDifferences(std::string_view text, const std::set<Rule>& ignored) {
    return Fixer(text, ignored).fix();
}

} // namespace connector::configuration::properties::detail
