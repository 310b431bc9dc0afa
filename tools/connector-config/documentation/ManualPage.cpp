#include "documentation/ManualPage.hpp"

#include <algorithm>
#include <cctype>

namespace connector_config {

namespace {

bool isLetter(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

/// A hyphen that a user types must be a minus sign in roff; `every` says that all are typed.
std::string escaped(const std::string& text, bool every) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool begins = i == 0 || !isLetter(text[i - 1]);
        if (text[i] == '\\')
            result += "\\e";
        else if (text[i] == '-' && (every || begins))
            result += "\\-";
        else
            result += text[i];
    }
    const bool isRequest = !result.empty() && (result[0] == '.' || result[0] == '\'');
    return isRequest ? "\\&" + result : result;
}

std::string inLiteral(const std::string& text) {
    return escaped(text, true) + "\n";
}

std::string inText(const std::string& text) {
    return escaped(text, false) + "\n";
}

/// Bold is typed as it is; words in capitals are placeholders and in italics.
std::string marked(const std::string& term) {
    std::string result;
    std::size_t i = 0;
    while (i < term.size()) {
        const bool isPlaceholder = std::isupper(static_cast<unsigned char>(term[i])) != 0;
        std::size_t end = i + 1;
        while (end < term.size() &&
               (std::isupper(static_cast<unsigned char>(term[end])) != 0) == isPlaceholder)
            ++end;
        result += (isPlaceholder ? "\\fI" : "\\fB") + escaped(term.substr(i, end - i), true);
        i = end;
    }
    return result + "\\fR\n";
}

std::string description(const HelpEntry& entry) {
    std::string result;
    bool isLiteral = false;
    for (const HelpLine& line : entry.description) {
        if (line.isLiteral != isLiteral)
            result += line.isLiteral ? ".EX\n" : ".EE\n";
        isLiteral = line.isLiteral;
        result += isLiteral ? inLiteral(line.text) : inText(line.text);
    }
    return result + (isLiteral ? ".EE\n" : "");
}

std::string entries(const HelpBlock& block) {
    std::string result;
    if (block.isLiteral()) {
        result += ".EX\n";
        for (const HelpEntry& entry : block.entries)
            result += inLiteral(entry.term);
        return result + ".EE\n";
    }
    bool isNested = false; // options of a command are indented below it
    for (const HelpEntry& entry : block.entries) {
        const bool nests = !entry.command.empty() && entry.term.front() == '-';
        if (nests != isNested)
            result += nests ? ".RS\n" : ".RE\n";
        isNested = nests;
        result += ".TP\n" + marked(entry.term) + description(entry);
    }
    return result + (isNested ? ".RE\n" : "");
}

/// @return the first line
std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

/// @return the heading up to its first comma; the whole text follows as a paragraph if there is one
std::string heading(const HelpBlock& block) {
    const std::size_t comma = block.text.find(',');
    std::string title = block.text.substr(0, comma);
    std::transform(title.begin(), title.end(), title.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return ".SH \"" + title + "\"\n" + (comma == std::string::npos ? "" : inText(block.text + "."));
}

std::string purpose(const HelpDocument& help) {
    if (help.blocks.empty() || help.blocks.front().isHeading)
        return "";
    std::string text = help.blocks.front().text;
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    if (text.back() == '.')
        text.pop_back();
    return text;
}

} // namespace

std::string manualPage(const HelpDocument& help, const std::string& version) {
    std::string page = ".TH CONNECTOR-CONFIG 1 \"\" \"" + escaped(firstLine(version), true) +
                       "\" \"User Commands\"\n"
                       ".SH NAME\nconnector-config \\- " +
                       inText(purpose(help)) + ".SH SYNOPSIS\n" + marked(help.usage);
    for (std::size_t i = 0; i < help.blocks.size(); ++i) {
        const HelpBlock& block = help.blocks[i];
        if (block.isHeading)
            page += heading(block) + entries(block);
        else
            page += (i == 0 ? ".SH DESCRIPTION\n" : ".PP\n") + inText(block.text);
    }
    return page;
}

} // namespace connector_config
