#include "configuration/properties/lint/DocumentedRules.hpp"

#include <fstream>
#include <utility>

namespace test {

namespace {

/// @return the trimmed cells, without the marks of code; none if the line is no row of a table
std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    for (std::size_t start = 0; start + 1 < line.size() && line[0] == '|';) {
        const std::size_t end = line.find('|', start + 1);
        std::string cell = line.substr(start + 2, end - start - 3);
        if (cell.size() > 1 && cell.front() == '`' && cell.back() == '`')
            cell = cell.substr(1, cell.size() - 2);
        cells.push_back(cell);
        start = end;
    }
    return cells;
}

std::string withControlCharacters(std::string text) {
    const std::pair<std::string, std::string> signs[] = {
        {"·", " "}, {"→", "\t"}, {"␌", "\f"}, {"⏎", "\n"}, {"⍰", "\xEF\xBB\xBF"}};
    for (const auto& [sign, character] : signs) {
        for (std::size_t i = text.find(sign); i != std::string::npos; i = text.find(sign))
            text.replace(i, sign.size(), character);
    }
    return text;
}

} // namespace

std::vector<DocumentedRule> documentedRules() {
    std::ifstream document(PROJECT_ROOT "/docs/checking-files.md");
    std::vector<DocumentedRule> rules;
    for (std::string line; std::getline(document, line);) {
        const std::vector<std::string> cells = cellsOf(line);
        if (cells.size() != 4 || cells[0] == "rule" || cells[0][0] == '-')
            continue;
        const bool isRefused = cells[3] == "refuses the file";
        rules.push_back({cells[0], withControlCharacters(cells[1]), cells[2],
                         isRefused ? cells[3] : "reads " + cells[3]});
    }
    return rules;
}

} // namespace test
