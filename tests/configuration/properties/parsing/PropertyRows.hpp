/// The rules of property files as a table of inputs and expected results.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// The line breaks for which a row holds. "\n" in the expected texts stands for the line break.
enum class LineBreaks {
    any,       ///< LF, CR LF and CR
    oneByte,   ///< LF and CR; the row counts characters
    asWritten, ///< the row depends on its own line breaks
};

struct PropertyRow {
    int line;
    std::string behaviour; ///< the name of the row's test
    std::string input;
    std::vector<std::pair<std::string, std::string>> options; ///< sorted by key
    std::vector<std::string> logLines;
    LineBreaks lineBreaks = LineBreaks::any;
};

std::ostream& operator<<(std::ostream& stream, const PropertyRow& row);

/// @return all rows
const std::vector<PropertyRow>& propertyRows();

// The tables that propertyRows puts together.
std::vector<PropertyRow> separatorRows();
std::vector<PropertyRow> lineRows();
std::vector<PropertyRow> escapeRows();
std::vector<PropertyRow> continuationRows();
std::vector<PropertyRow> endOfInputRows();

/// @return `row` with `lineBreak` wherever it has "\n"
PropertyRow withLineBreak(PropertyRow row, const std::string& lineBreak);

/// @return the row with every kind of line break for which it holds
std::vector<PropertyRow> lineBreakVariations(const PropertyRow& row);

} // namespace test
