#include "display/Table.hpp"

#include "display/TextWidth.hpp"

#include <algorithm>
#include <limits>

namespace connector_config {

namespace {

using Widths = std::vector<std::size_t>;

constexpr std::size_t gap = 2;               // columns of the terminal between those of the table
constexpr std::size_t leastShrunkWidth = 12; // less of a value is not worth its room
constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

std::size_t lineWidth(const Widths& widths) {
    std::size_t sum = 0;
    for (const std::size_t width : widths)
        sum += width == 0 ? 0 : width + (sum == 0 ? 0 : gap);
    return sum;
}

void shrink(std::size_t& width, std::size_t excess) {
    const std::size_t least = std::min(width, leastShrunkWidth);
    width = std::max(least, width - std::min(width, excess));
}

std::string styled(const std::string& text, Style style, bool colour) {
    if (!colour || style == Style::Plain || text.empty())
        return text;
    return (style == Style::Strong ? "\x1b[1m" : "\x1b[36m") + text + "\x1b[0m";
}

std::string line(const std::vector<Cell>& row, const Widths& widths, std::size_t room,
                 bool colour) {
    std::string text;
    std::size_t blanks = 0; // before the next cell; none are left over at the end of the line
    for (std::size_t column = 0; column < row.size(); ++column) {
        const std::string cell =
            cutToWidth(row[column].text, std::min(widths[column], room - std::min(room, blanks)));
        const std::size_t width = widthOf(cell);
        if (!cell.empty()) {
            text += std::string(blanks, ' ') + styled(cell, row[column].style, colour);
            room -= blanks + width;
            blanks = 0;
        }
        if (widths[column] != 0)
            blanks += widths[column] - width + gap;
    }
    return text + '\n';
}

} // namespace

std::string Table::text(const Terminal& terminal) const {
    return textCutToWidth({terminal.colour, std::nullopt}, 0);
}

std::string Table::textCutToWidth(const Terminal& terminal, std::size_t shrinking) const {
    Widths widths = columnWidths();
    const std::size_t room = terminal.width.value_or(unlimited);
    const std::size_t needed = lineWidth(widths);
    if (needed > room)
        shrink(widths[shrinking], needed - room);

    std::string text;
    for (const std::vector<Cell>& row : rows)
        text += line(row, widths, room, terminal.colour);
    return text;
}

std::vector<std::size_t> Table::columnWidths() const {
    Widths widths(rows.empty() ? 0 : rows.front().size());
    for (const std::vector<Cell>& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], widthOf(row[column].text));
    }
    return widths;
}

} // namespace connector_config
