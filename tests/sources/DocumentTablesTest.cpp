/// Replays the tables of docs/sources.md.
#include "sources/Shown.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/sources/FileSource.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace test {

namespace {

using connector::sources::FileError;
using connector::sources::FileFormat;
using connector::sources::FileSource;

struct Row {
    int line;
    FileFormat format;
    std::string document;
    std::vector<std::string> expected; // sorted by the map that compares them
};

/// @return the code of a cell: each text between backticks
std::vector<std::string> codeIn(const std::string& cell) {
    std::vector<std::string> codes;
    for (std::size_t open = cell.find('`'); open != std::string::npos;) {
        const std::size_t close = cell.find('`', open + 1);
        if (close == std::string::npos)
            break;
        codes.push_back(cell.substr(open + 1, close - open - 1));
        open = cell.find('`', close + 1);
    }
    return codes;
}

std::string withLineBreaks(std::string text) {
    const std::string sign = "↵";
    for (std::size_t at = text.find(sign); at != std::string::npos; at = text.find(sign, at))
        text.replace(at, sign.size(), "\n");
    return text;
}

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::size_t start = 2;
    for (std::size_t bar = line.find(" |", 1); bar != std::string::npos;
         bar = line.find(" |", start)) {
        cells.push_back(line.substr(start, bar - std::min(start, bar)));
        start = bar + 3;
    }
    return cells;
}

std::vector<Row> rowsOfTheDocument() {
    static const std::map<std::string, FileFormat> formats = {
        {"JSON", FileFormat::Json}, {"YAML", FileFormat::Yaml}, {"TOML", FileFormat::Toml}};
    std::vector<Row> rows;
    std::ifstream document(SOURCES_DOCUMENT);
    int number = 0;
    for (std::string line; std::getline(document, line);) {
        ++number;
        for (const auto& [name, format] : formats) {
            const std::size_t at = line.find("| " + name + " | `");
            if (at == std::string::npos)
                continue;
            const std::vector<std::string> cells = cellsOf(line.substr(at));
            const std::vector<std::string> code = codeIn(cells.at(1));
            rows.push_back({number, format, withLineBreaks(code.empty() ? "" : code.front()),
                            cells.size() > 2 ? codeIn(cells[2]) : std::vector<std::string>()});
        }
    }
    return rows;
}

/// @return the options in the notation of the document, or the error
std::vector<std::string> observed(const std::filesystem::path& path, FileFormat format) {
    try {
        std::vector<std::string> options;
        const auto table = FileSource(path, format).table();
        for (const auto& [key, value] : *table)
            options.push_back(key + " = " + shown(value));
        std::sort(options.begin(), options.end());
        return options;
    } catch (const FileError& error) {
        const std::string text = error.what();
        return {"error " + text.substr(path.string().size() + 1)};
    }
}

} // namespace

TEST(DocumentTablesTest, EveryRowOfTheDocumentHolds) {
    const TemporaryDirectory directory;
    const std::vector<Row> rows = rowsOfTheDocument();
    ASSERT_LT(70u, rows.size());
    for (Row row : rows) {
        SCOPED_TRACE("docs/sources.md, line " + std::to_string(row.line) + ": " + row.document);
        std::sort(row.expected.begin(), row.expected.end());
        EXPECT_EQ(row.expected, observed(directory.write("document", row.document), row.format));
    }
}

TEST(DocumentTablesTest, EveryRowHoldsBehindAByteOrderMark) {
    const TemporaryDirectory directory;
    for (Row row : rowsOfTheDocument()) {
        SCOPED_TRACE("docs/sources.md, line " + std::to_string(row.line) + ": " + row.document);
        std::sort(row.expected.begin(), row.expected.end());
        EXPECT_EQ(row.expected,
                  observed(directory.write("document", "\xEF\xBB\xBF" + row.document), row.format));
    }
}

TEST(DocumentTablesTest, EveryRowWithoutErrorHoldsWithWindowsLineBreaks) {
    const TemporaryDirectory directory;
    for (Row row : rowsOfTheDocument()) {
        SCOPED_TRACE("docs/sources.md, line " + std::to_string(row.line) + ": " + row.document);
        for (std::size_t at = row.document.find('\n'); at != std::string::npos;
             at = row.document.find('\n', at + 2))
            row.document.insert(at, "\r");
        std::sort(row.expected.begin(), row.expected.end());
        EXPECT_EQ(row.expected, observed(directory.write("document", row.document), row.format));
    }
}

} // namespace test
