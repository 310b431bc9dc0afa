/// The logical lines of java.util.Properties.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace connector::configuration::properties::detail {

/// A line together with the lines that continue it, without the backslashes and line breaks between
/// them and without the white space at the start of each.
class LogicalLine {
public:
    /// Makes the line empty. @param newStart  offset of its first character in the file
    void begin(std::size_t newStart);

    /// Appends a part of the file that begins at the offset.
    void append(std::string_view part, std::size_t offset);

    const std::string& text() const { return line; }
    std::size_t start() const { return startOffset; }

    /// @return where in the file the character is. REQUIRES: the line has it
    std::size_t offsetOf(std::size_t index) const;

private:
    struct Part {
        std::size_t index;  ///< in the line
        std::size_t offset; ///< in the file
    };

    std::string line;
    std::size_t startOffset = 0;
    std::vector<Part> parts; // not empty ones; in ascending order
};

/// Splits a text into logical lines. Blank lines and comments are none.
class LogicalLineReader {
public:
    /// @param newPosition  where the first line begins
    LogicalLineReader(std::string_view newText, std::size_t newPosition);

    /// @return whether there was another line. It may be empty at the end of the file.
    bool next(LogicalLine& line);

    /// @return in ascending order, the offsets at which a line begins that continues no other line
    std::vector<std::size_t> takeLineStarts() { return std::move(lineStarts); }

private:
    bool atEnd() const { return position == text.size(); }
    bool skipToContent();
    bool readLine(LogicalLine& line);
    bool appendNaturalLine(LogicalLine& line);
    void skipWhiteSpace();
    void endLine();

    const std::string_view text;
    std::size_t position;
    std::vector<std::size_t> lineStarts;
};

} // namespace connector::configuration::properties::detail
