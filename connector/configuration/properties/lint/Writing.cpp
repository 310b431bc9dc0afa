#include <connector/configuration/properties/lint/Writing.hpp>

#include <connector/configuration/properties/lint/Characters.hpp>

#include <algorithm>

namespace connector::configuration::properties::detail {

namespace {

void appendUnit(std::string& line, unsigned unit) {
    constexpr const char* digits = "0123456789ABCDEF";
    line += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        line += digits[(unit >> shift) & 15];
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

/// Appends a character of a key or a value. Control characters are escaped, also those that need
/// it only in some places: everybody can see an escape.
void appendPlain(std::string& line, char c) {
    if (c == '\\')
        line += "\\\\";
    else if (isControl(c))
        appendUnit(line, static_cast<unsigned char>(c));
    else
        line += c;
}

/// Appends the first character of a value, or of a line that continues one: it must not look like
/// a part of the separator.
void appendFirst(std::string& line, char c) {
    if (c == ' ' || isAssignment(c))
        line += '\\';
    appendPlain(line, c);
}

void appendInKey(std::string& line, char c) {
    const bool isFirst = line.empty();
    if (c == ' ' || isAssignment(c) || (isFirst && isCommentSign(c)))
        line += '\\';
    appendPlain(line, c);
}

/// Appends all of the text but a byte order mark at its start.
std::string_view withoutMark(std::string& line, std::string_view text) {
    if (!line.empty() || text.substr(0, byteOrderMark.size()) != byteOrderMark)
        return text;
    appendUnit(line, 0xFEFF);
    return text.substr(byteOrderMark.size());
}

std::string writtenKey(std::string_view key) {
    std::string line;
    for (const char c : withoutMark(line, key))
        appendInKey(line, c);
    return line;
}

std::string writtenValue(std::string_view value) {
    std::string line;
    for (const char c : value) {
        if (line.empty())
            appendFirst(line, c);
        else
            appendPlain(line, c);
    }
    return line;
}

/// @return whether an escape is read alike, so that it can stay. One that takes a part of a
/// character has to stay: the rest alone is no text.
bool canStay(std::string_view text, const Piece& piece) {
    if (piece.kind == Piece::Kind::Unicode)
        return isComplete(text, piece) || splitsCharacter(text, piece);
    const char escaped = text[piece.offset + 1];
    return controlCharacter(escaped) == '\0' && !isLineBreak(escaped);
}

void appendEscape(std::string& line, std::string_view text, const Piece& piece) {
    if (canStay(text, piece))
        line += text.substr(piece.offset, piece.length);
    else if (piece.kind == Piece::Kind::Unicode)
        appendUnit(line, unitOf(text, piece));
    else
        appendPlain(line, text[piece.offset + 1]);
}

std::string rewrittenKey(std::string_view text, const Pieces& key) {
    std::string line;
    for (const Piece& piece : key) {
        if (piece.kind != Piece::Kind::Plain) {
            appendEscape(line, text, piece);
            continue;
        }
        for (const char c : withoutMark(line, text.substr(piece.offset, piece.length)))
            appendInKey(line, c);
    }
    return line;
}

/// @return the separator, without what only one of the readers skips
std::string rewrittenSeparator(std::string_view text, const LibraryProperty& property) {
    const std::string_view separator =
        text.substr(property.keyEnd, property.valueStart - property.keyEnd);
    const bool isAssigned = isAssignment(separator.front());
    const std::size_t second = separator.find_first_of(":=", 1);
    if (isAssigned && second != std::string_view::npos)
        return std::string(1, separator.front());
    if (property.key.empty() && !isAssigned)
        return "=";
    return std::string(separator);
}

/// @return the text between two pieces of a value if both readers take it for continuations
std::string_view commonContinuation(std::string_view text, std::size_t first, std::size_t last) {
    for (std::size_t i = first; i < last;) {
        i += text.compare(i + 1, 2, "\r\n") == 0 ? 3 : 2;
        i = std::min(text.find_first_not_of(' ', i), last);
        if (i < last && isLineBreak(text[i]))
            return {};
    }
    return text.substr(first, last - first);
}

std::string rewrittenValue(std::string_view text, const LibraryProperty& property) {
    std::string line;
    std::size_t position = property.valueStart;
    for (const Piece& piece : property.value) {
        const std::string_view between = commonContinuation(text, position, piece.offset);
        const bool isFirst = line.empty() || !between.empty();
        line += between;
        position = piece.offset + piece.length;
        if (piece.kind != Piece::Kind::Plain) {
            appendEscape(line, text, piece);
            continue;
        }
        if (isFirst)
            appendFirst(line, text[piece.offset]);
        else
            line += text[piece.offset];
        line += text.substr(piece.offset + 1, piece.length - 1);
    }
    return line;
}

} // namespace

std::string written(std::string_view key, std::string_view value) {
    return writtenKey(key) + '=' + writtenValue(value);
}

std::string rewritten(std::string_view text, const LibraryProperty& property) {
    return rewrittenKey(text, property.key) + rewrittenSeparator(text, property) +
           rewrittenValue(text, property);
}

} // namespace connector::configuration::properties::detail
