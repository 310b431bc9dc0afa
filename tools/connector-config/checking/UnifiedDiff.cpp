#include "checking/UnifiedDiff.hpp"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace connector_config {

namespace {

constexpr std::size_t context = 3;
constexpr std::size_t farthest = 200; // lines that are searched for the end of a change

/// A line of either text, or of both.
struct Edit {
    char kind; ///< ' ', '-' or '+'
    std::string_view line;
};

using Lines = std::vector<std::string_view>;
using Edits = std::vector<Edit>;

Lines split(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

/// How many lines of each text belong to a change.
struct Change {
    std::size_t before;
    std::size_t after;
};

/// @return the shortest change from here to two lines that are equal. The changes of a fix are
///         short, so a search nearby is enough. Any result makes a right patch.
Change changeAt(const Lines& before, std::size_t i, const Lines& after, std::size_t j) {
    for (std::size_t sum = 1; sum < farthest; ++sum) {
        for (std::size_t ahead = 0; ahead <= sum; ++ahead) {
            const std::size_t k = i + sum - ahead, l = j + ahead;
            if (k < before.size() && l < after.size() && before[k] == after[l])
                return {k - i, l - j};
        }
    }
    return {before.size() - i, after.size() - j};
}

Edits editsOf(const Lines& before, const Lines& after) {
    Edits edits;
    std::size_t i = 0, j = 0;
    const auto take = [&edits](const Lines& lines, std::size_t& position, std::size_t count,
                               char kind) {
        for (; count > 0; --count)
            edits.push_back({kind, lines[position++]});
    };
    while (i < before.size() || j < after.size()) {
        if (i < before.size() && j < after.size() && before[i] == after[j]) {
            ++j;
            take(before, i, 1, ' ');
            continue;
        }
        const Change change = changeAt(before, i, after, j);
        take(before, i, change.before, '-');
        take(after, j, change.after, '+');
    }
    return edits;
}

std::string range(std::size_t first, std::size_t count) {
    return std::to_string(count == 0 ? first : first + 1) + ',' + std::to_string(count);
}

std::string written(const Edit& edit) {
    std::string text = edit.kind + std::string(edit.line);
    if (text.back() != '\n')
        text += "\n\\ No newline at end of file\n";
    return text;
}

/// Writes hunks: changes with their context, of which those that touch are one.
class HunkWriter {
public:
    explicit HunkWriter(const Edits& newEdits) : edits(newEdits) {}

    std::string write() {
        while (position < edits.size()) {
            if (edits[position].kind == ' ')
                pass();
            else
                writeHunk();
        }
        return text;
    }

private:
    void pass() {
        before += edits[position].kind != '+' ? 1 : 0;
        after += edits[position].kind != '-' ? 1 : 0;
        ++position;
    }

    /// @return the end of the hunk with the change at the position
    std::size_t endOfHunk() const {
        std::size_t end = position;
        for (std::size_t i = position; i < edits.size() && i <= end + 2 * context + 1; ++i)
            end = edits[i].kind != ' ' ? i : end;
        return std::min(end + 1 + context, edits.size());
    }

    void writeHunk() {
        const std::size_t lead = std::min(context, position - hunkEnd);
        const std::size_t firstBefore = before - lead, firstAfter = after - lead;
        std::string lines;
        for (std::size_t i = position - lead; i < position; ++i)
            lines += written(edits[i]);
        for (hunkEnd = endOfHunk(); position < hunkEnd; pass())
            lines += written(edits[position]);
        text += "@@ -" + range(firstBefore, before - firstBefore) + " +" +
                range(firstAfter, after - firstAfter) + " @@\n" + lines;
    }

    const Edits& edits;
    std::size_t position = 0;
    std::size_t hunkEnd = 0; // of the last hunk
    std::size_t before = 0;  // lines of each text that were passed
    std::size_t after = 0;
    std::string text;
};

} // namespace

std::string unifiedDiff(const std::string& name, const std::string& before,
                        const std::string& after) {
    const Lines linesBefore = split(before);
    const Lines linesAfter = split(after);
    const Edits edits = editsOf(linesBefore, linesAfter);
    const std::string hunks = HunkWriter(edits).write();
    return hunks.empty() ? "" : "--- " + name + "\n+++ " + name + '\n' + hunks;
}

} // namespace connector_config
