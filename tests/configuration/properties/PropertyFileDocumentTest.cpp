/// Checks the examples of docs/property-files.md against the library.

#include "configuration/properties/parsing/Observation.hpp"

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace test {

namespace {

using Texts = std::map<std::string, std::string>;

std::vector<std::string> documentLines() {
    std::ifstream document(PROPERTY_FILES_DOCUMENT);
    std::vector<std::string> lines;
    for (std::string line; std::getline(document, line);)
        lines.push_back(line);
    return lines;
}

Texts parse(const std::string& text) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream(text);
    source->parseStream(stream);
    return optionsOf(*source);
}

/// @return the blocks fenced as `language`, with their line breaks
std::vector<std::string> fencedBlocks(const std::string& language) {
    std::vector<std::string> blocks;
    bool inside = false;
    for (const std::string& line : documentLines()) {
        if (inside && line == "```")
            inside = false;
        else if (inside)
            blocks.back() += line + "\n";
        else if (line == "```" + language) {
            inside = true;
            blocks.emplace_back();
        }
    }
    return blocks;
}

Texts textsOfJson(const std::string& json) {
    const auto object = Poco::JSON::Parser().parse(json).extract<Poco::JSON::Object::Ptr>();
    Texts texts;
    for (const std::string& name : object->getNames())
        texts[name] = object->getValue<std::string>(name);
    return texts;
}

/// @return the trimmed cells of a table row; none when the line is not one
std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream stream(line);
    std::string cell;
    if (!std::getline(stream, cell, '|') || !cell.empty())
        return cells;
    while (std::getline(stream, cell, '|')) {
        const std::size_t first = cell.find_first_not_of(' ');
        const std::size_t last = cell.find_last_not_of(' ');
        cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
    }
    return cells;
}

/// @return the rows of all tables whose first column is headed `head`
std::vector<std::vector<std::string>> rowsUnder(const std::string& head) {
    std::vector<std::vector<std::string>> rows;
    bool inside = false;
    for (const std::string& line : documentLines()) {
        const std::vector<std::string> cells = cellsOf(line);
        if (cells.empty())
            inside = false;
        else if (cells[0] == head)
            inside = true;
        else if (inside && cells[0] != "---")
            rows.push_back(cells);
    }
    return rows;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
        text.replace(at, from.size(), to);
}

/// @return the text that a cell stands for, with its symbols for white space replaced
std::string textOf(std::string cell) {
    if (cell == "*empty*")
        return "";
    EXPECT_TRUE(cell.size() > 2 && cell.front() == '`' && cell.back() == '`') << cell;
    cell = cell.substr(1, cell.size() - 2);
    replaceAll(cell, "\u00b7", " ");  // the middle dot
    replaceAll(cell, "\u2192", "\t"); // the arrow
    replaceAll(cell, "\u23ce", "\n"); // the return symbol
    return cell;
}

Texts expectedOf(const std::vector<std::string>& row) {
    if (row.at(1) == "*lost*")
        return {};
    return {{textOf(row.at(1)), textOf(row.at(2))}};
}

} // namespace

TEST(PropertyFileDocument, TheFilesHaveTheOptionsShown) {
    const std::vector<std::string> files = fencedBlocks("properties");
    const std::vector<std::string> options = fencedBlocks("json");
    ASSERT_EQ(files.size(), options.size());
    ASSERT_FALSE(files.empty());
    for (std::size_t i = 0; i < files.size(); ++i)
        EXPECT_EQ(textsOfJson(options[i]), parse(files[i])) << files[i];
}

TEST(PropertyFileDocument, TheLinesHaveTheKeysAndValuesShown) {
    const auto rows = rowsUnder("Line");
    ASSERT_EQ(35u, rows.size()); // every row was found
    for (const auto& row : rows)
        EXPECT_EQ(expectedOf(row), parse(textOf(row.at(0)) + "\n")) << row.at(0);
}

TEST(PropertyFileDocument, TheEndsOfFilesHaveTheKeysAndValuesShown) {
    const auto rows = rowsUnder("End of the file");
    ASSERT_EQ(15u, rows.size());
    for (const auto& row : rows)
        EXPECT_EQ(expectedOf(row), parse(textOf(row.at(0)))) << row.at(0);
}

} // namespace test
