#include "configuration/properties/parsing/PropertyRows.hpp"

namespace test {

namespace {

void replaceLineBreaks(std::string& text, const std::string& lineBreak) {
    std::string replaced;
    for (const char c : text)
        replaced += c == '\n' ? lineBreak : std::string(1, c);
    text = replaced;
}

void append(std::vector<PropertyRow>& rows, const std::vector<PropertyRow>& more) {
    rows.insert(rows.end(), more.begin(), more.end());
}

std::vector<PropertyRow> allRows() {
    std::vector<PropertyRow> rows;
    append(rows, separatorRows());
    append(rows, lineRows());
    append(rows, escapeRows());
    append(rows, continuationRows());
    append(rows, endOfInputRows());
    return rows;
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const PropertyRow& row) {
    return stream << row.behaviour << " (line " << row.line << ")";
}

const std::vector<PropertyRow>& propertyRows() {
    static const std::vector<PropertyRow> rows = allRows();
    return rows;
}

PropertyRow withLineBreak(PropertyRow row, const std::string& lineBreak) {
    replaceLineBreaks(row.input, lineBreak);
    for (auto& [key, value] : row.options) {
        replaceLineBreaks(key, lineBreak);
        replaceLineBreaks(value, lineBreak);
    }
    for (std::string& line : row.logLines)
        replaceLineBreaks(line, lineBreak);
    return row;
}

std::vector<PropertyRow> lineBreakVariations(const PropertyRow& row) {
    std::vector<PropertyRow> rows{row};
    if (row.lineBreaks != LineBreaks::asWritten)
        rows.push_back(withLineBreak(row, "\r"));
    if (row.lineBreaks == LineBreaks::any)
        rows.push_back(withLineBreak(row, "\r\n"));
    return rows;
}

} // namespace test
