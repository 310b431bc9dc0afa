/// Aligned columns.
#pragma once

#include "display/Terminal.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace connector_config {

enum class Style { Plain, Strong, Quiet };

struct Cell {
    std::string text; ///< escaped
    Style style = Style::Plain;
};

class Table {
public:
    /// All rows have the same number of cells.
    void add(std::vector<Cell> row) { rows.push_back(std::move(row)); }

    /// Columns that are empty in every row take no room.
    /// @return the rows, one a line
    std::string text(const Terminal& terminal) const;

    /// The same, no line wider than the terminal: first the given column shrinks, then lines are cut.
    std::string textCutToWidth(const Terminal& terminal, std::size_t shrinking) const;

private:
    std::vector<std::size_t> columnWidths() const;

    std::vector<std::vector<Cell>> rows;
};

} // namespace connector_config
