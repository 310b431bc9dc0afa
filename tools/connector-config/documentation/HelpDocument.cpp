#include "documentation/HelpDocument.hpp"

#include <algorithm>
#include <sstream>

namespace connector_config {

namespace {

constexpr std::size_t descriptionColumn = 25; // of entries whose term fills the first line

/// @return the leading words in lower case: those that select a command
std::string commandIn(const std::string& term) {
    std::istringstream words(term);
    std::string path;
    for (std::string word; words >> word;) {
        if (word.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") != std::string::npos ||
            word.front() == '-')
            break;
        path += (path.empty() ? "" : " ") + word;
    }
    return path;
}

bool hasName(const std::string& term, const std::string& name) {
    std::string words = term + ' ';
    std::replace_if(
        words.begin(), words.end(), [](char c) { return c == ',' || c == '='; }, ' ');
    const std::size_t place = (' ' + words).find(' ' + name + ' ');
    return place != std::string::npos;
}

/// Reads line by line.
class Reader {
public:
    explicit Reader(const std::string& text) {
        std::istringstream lines(text);
        std::string line;
        std::getline(lines, line);
        const std::string prefix = "Usage: ";
        document.usage = line.rfind(prefix, 0) == 0 ? line.substr(prefix.size()) : line;
        while (std::getline(lines, line))
            read(line);
    }

    HelpDocument document;

private:
    void read(const std::string& line) {
        const std::size_t indent = line.find_first_not_of(' ');
        if (indent == std::string::npos)
            column = 0;
        else if (indent == 0)
            readBlock(line);
        else if (document.blocks.empty() || !document.blocks.back().isHeading)
            addToParagraph(line.substr(indent));
        else if (column != 0 && indent >= column)
            continueEntry(line, indent);
        else
            readEntry(line, indent);
    }

    void readBlock(const std::string& line) {
        const bool isHeading = line.back() == ':';
        const std::string text = isHeading ? line.substr(0, line.size() - 1) : line;
        const bool continues = column == 1 && !document.blocks.empty();
        if (continues)
            addToParagraph(text);
        else
            document.blocks.push_back({text, false, {}});
        document.blocks.back().isHeading = isHeading;
        command.clear();
        column = isHeading ? 0 : 1; // a paragraph continues until an empty line
    }

    void addToParagraph(const std::string& text) {
        if (!document.blocks.empty())
            document.blocks.back().text += " " + text;
    }

    void readEntry(const std::string& line, std::size_t indent) {
        const std::size_t end = line.find("  ", indent);
        HelpEntry entry;
        entry.term = line.substr(indent, end - indent);
        const std::string selected = commandIn(entry.term);
        if (document.blocks.back().text == "Commands" && !selected.empty())
            command = selected;
        entry.command = command;
        document.blocks.back().entries.push_back(std::move(entry));
        column = descriptionColumn;
        if (end == std::string::npos)
            return;
        column = line.find_first_not_of(' ', end);
        continueEntry(line, column);
    }

    void continueEntry(const std::string& line, std::size_t indent) {
        document.blocks.back().entries.back().description.push_back(
            {line.substr(column), indent > column});
    }

    std::string command;
    std::size_t column = 0; // of the description of the last entry; 0 if it has none
};

/// @return the text up to the first mark that ends a clause
std::string firstClause(const std::string& text) {
    return text.substr(
        0, std::min({text.find(';'), text.find(": "), text.find(". "), text.find(" (")}));
}

/// @return the commands that begin with this one, without it, with commas
std::string commandsBelow(const HelpDocument& help, const std::string& command) {
    std::string commands;
    for (const HelpBlock& block : help.blocks) {
        for (const HelpEntry& entry : block.entries) {
            const std::string selected = commandIn(entry.term);
            if (selected.rfind(command + ' ', 0) == 0)
                commands += (commands.empty() ? "" : ", ") + selected.substr(command.size() + 1);
        }
    }
    return commands;
}

} // namespace

std::string HelpEntry::text() const {
    std::string joined;
    for (const HelpLine& line : description) {
        if (!line.isLiteral)
            joined += (joined.empty() ? "" : " ") + line.text;
    }
    return joined;
}

bool HelpBlock::isLiteral() const {
    return std::all_of(entries.begin(), entries.end(),
                       [](const HelpEntry& entry) { return entry.description.empty(); });
}

HelpDocument readHelp(const std::string& text) {
    return std::move(Reader(text).document);
}

std::string summaryOf(const HelpDocument& help, const std::string& command,
                      const std::string& option) {
    for (const HelpBlock& block : help.blocks) {
        for (const HelpEntry& entry : block.entries) {
            const bool fits =
                option.empty() ? commandIn(entry.term) == command : hasName(entry.term, option);
            if (fits && entry.command == command)
                return entry.description.empty() ? entry.term : firstClause(entry.text());
        }
    }
    return option.empty() ? commandsBelow(help, command) : "";
}

} // namespace connector_config
