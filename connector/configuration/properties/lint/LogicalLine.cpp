#include <connector/configuration/properties/lint/LogicalLine.hpp>

#include <connector/configuration/properties/lint/Characters.hpp>

#include <algorithm>

namespace connector::configuration::properties::detail {

void LogicalLine::begin(std::size_t newStart) {
    line.clear();
    parts.clear();
    startOffset = newStart;
}

void LogicalLine::append(std::string_view part, std::size_t offset) {
    if (part.empty())
        return;
    parts.push_back({line.size(), offset});
    line += part;
}

std::size_t LogicalLine::offsetOf(std::size_t index) const {
    const auto behind =
        std::upper_bound(parts.begin(), parts.end(), index,
                         [](std::size_t left, const Part& part) { return left < part.index; });
    const Part& part = *(behind - 1);
    return part.offset + (index - part.index);
}

LogicalLineReader::LogicalLineReader(std::string_view newText, std::size_t newPosition)
    : text(newText), position(newPosition), lineStarts{0} {
}

bool LogicalLineReader::next(LogicalLine& line) {
    while (skipToContent()) {
        if (readLine(line))
            return true;
    }
    return false;
}

/// Skips white space, blank lines and comments. @return whether there is something behind
bool LogicalLineReader::skipToContent() {
    for (;;) {
        skipWhiteSpace();
        if (atEnd())
            return false;
        if (isLineBreak(text[position]))
            endLine();
        else if (isCommentSign(text[position]))
            position = std::min(text.find_first_of("\r\n", position), text.size());
        else
            return true;
    }
}

/// Reads a line and those that continue it. @return false if nothing was left of the first ones:
/// then the next line is no continuation, but may be blank or a comment
bool LogicalLineReader::readLine(LogicalLine& line) {
    line.begin(position);
    while (appendNaturalLine(line)) {
        if (atEnd())
            return true;
        // At the very end of the file, even an empty line counts. A CR LF there hides that.
        const bool isLast = position + 1 == text.size();
        position += text.compare(position, 2, "\r\n") == 0 ? 2 : 1;
        if (isLast)
            return true;
        skipWhiteSpace();
        if (line.text().empty())
            return false;
        if (atEnd() || isLineBreak(text[position]))
            break;
    }
    if (!atEnd())
        endLine();
    return true;
}

/// Appends the text up to the line break, which comes next. @return whether a backslash, which is
/// not appended, continues the line
bool LogicalLineReader::appendNaturalLine(LogicalLine& line) {
    const std::size_t start = position;
    bool isEscaped = false;
    for (; !atEnd() && !isLineBreak(text[position]); ++position)
        isEscaped = text[position] == '\\' && !isEscaped;
    line.append(text.substr(start, position - start - (isEscaped ? 1 : 0)), start);
    return isEscaped;
}

void LogicalLineReader::skipWhiteSpace() {
    position = std::min(text.find_first_not_of(" \t\f", position), text.size());
}

void LogicalLineReader::endLine() {
    ++position;
    lineStarts.push_back(position);
}

} // namespace connector::configuration::properties::detail
