#include "display/TextTable.hpp"

#include "display/TextWidth.hpp"

#include <algorithm>
#include <limits>

namespace connector_config {

namespace {

using Widths = std::vector<std::size_t>;

constexpr std::size_t gap = 2;             // spaces between columns
constexpr std::size_t minShrunkWidth = 12; // truncated any further, a value tells too little
constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

std::size_t lineWidth(const Widths& widths) {
    std::size_t sum = 0;
    for (const std::size_t width : widths)
        sum += width == 0 ? 0 : width + (sum == 0 ? 0 : gap);
    return sum;
}

void shrink(std::size_t& width, std::size_t excess) {
    const std::size_t minimum = std::min(width, minShrunkWidth);
    width = std::max(minimum, width - std::min(width, excess));
}

std::string styled(const std::string& text, Style style, bool colour) {
    if (!colour || style == Style::Plain || text.empty())
        return text;
    return (style == Style::Bold ? "\x1b[1m" : "\x1b[36m") + text + "\x1b[0m";
}

std::string line(const std::vector<Cell>& row, const Widths& widths, std::size_t available,
                 bool colour) {
    std::string text;
    std::size_t padding = 0; // before the next cell; never written at the end of a line
    for (std::size_t column = 0; column < row.size(); ++column) {
        const std::string cell = cutToWidth(
            row[column].text, std::min(widths[column], available - std::min(available, padding)));
        const std::size_t width = widthOf(cell);
        if (!cell.empty()) {
            text += std::string(padding, ' ') + styled(cell, row[column].style, colour);
            available -= padding + width;
            padding = 0;
        }
        if (widths[column] != 0)
            padding += widths[column] - width + gap;
    }
    return text + '\n';
}

} // namespace

std::string TextTable::text(const Terminal& terminal) const {
    return fittedText({terminal.colour, std::nullopt}, 0);
}

std::string TextTable::fittedText(const Terminal& terminal, std::size_t shrinkingColumn) const {
    Widths widths = columnWidths();
    const std::size_t available = terminal.width.value_or(unlimited);
    const std::size_t needed = lineWidth(widths);
    if (needed > available)
        shrink(widths[shrinkingColumn], needed - available);

    std::string text;
    for (const std::vector<Cell>& row : rows)
        text += line(row, widths, available, terminal.colour);
    return text;
}

std::vector<std::size_t> TextTable::columnWidths() const {
    Widths widths(rows.empty() ? 0 : rows.front().size());
    for (const std::vector<Cell>& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], widthOf(row[column].text));
    }
    return widths;
}

} // namespace connector_config
