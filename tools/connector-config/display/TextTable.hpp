/// A table with aligned columns.
#pragma once

#include "display/Terminal.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace connector_config {

enum class Style { Plain, Bold, Secondary };

struct Cell {
    std::string text; ///< escaped
    Style style = Style::Plain;
};

class TextTable {
public:
    /// @param row  as many cells as every other row has
    void add(std::vector<Cell> row) { rows.push_back(std::move(row)); }

    /// Omits columns that are empty in every row.
    /// @return a line for each row, of any width
    std::string text(const Terminal& terminal) const;

    /// The same with no line wider than the terminal: truncates the cells of one column first, then
    /// whole lines.
    std::string fittedText(const Terminal& terminal, std::size_t shrinkingColumn) const;

private:
    std::vector<std::size_t> columnWidths() const;

    std::vector<std::vector<Cell>> rows;
};

} // namespace connector_config
