/// The help text, taken apart.
#pragma once

#include <string>
#include <vector>

namespace connector_config {

/// A line of a description. Lines that are indented further stand as they are.
struct HelpLine {
    std::string text;
    bool isLiteral = false;
};

/// What is said of a term, for example of "-f, --file FILE".
struct HelpEntry {
    std::string term;
    std::vector<HelpLine> description;
    /// the command whose option this is; its own path for a command; empty for the program
    std::string command;

    /// @return the lines that are not literal, joined by spaces
    std::string text() const;
};

/// A heading with its entries, or a paragraph.
struct HelpBlock {
    std::string text; ///< without the colon of a heading
    bool isHeading = false;
    std::vector<HelpEntry> entries; ///< of a heading

    /// @return whether the block lists commands, without descriptions
    bool isLiteral() const;
};

struct HelpDocument {
    std::string usage; ///< without "Usage: "
    std::vector<HelpBlock> blocks;
};

/// @param text  the first line is the usage. Lines without indentation are paragraphs, or headings
///     if they end with a colon. Below a heading, a line with less indentation than the description
///     before it begins an entry; two spaces separate its term from its description.
HelpDocument readHelp(const std::string& text);

/// @return the first clause of what the document says of this option, or of the command itself if
///     there is no option name. Where there is only a term, that; for a command that has none, the
///     commands below it; empty if there is nothing of these.
std::string summaryOf(const HelpDocument& help, const std::string& command,
                      const std::string& option = "");

} // namespace connector_config
