#include <connector/configuration/properties/lint/LibraryReader.hpp>

#include <connector/configuration/properties/lint/Characters.hpp>
#include <connector/configuration/properties/lint/Utf8.hpp>

#include <algorithm>
#include <utility>

namespace connector::configuration::properties::detail {

namespace {

constexpr std::size_t unicodeLength = 6; // \uXXXX

bool endsKeyRun(char c) {
    return isAssignment(c) || isBlank(c) || c == '\\';
}
bool endsValueRun(char c) {
    return isLineBreak(c) || c == '\\';
}

/// The rules of PropertyParser, over a text in memory. Tests hold the two against each other.
class LibraryReader {
public:
    explicit LibraryReader(std::string_view newText) : text(newText) {}

    LibraryReading read() {
        startLine();
        while (!atEnd()) {
            if (isLineBreak(text[position]))
                skipLineBreak();
            else if (isCommentSign(text[position]))
                position = std::min(text.find_first_of("\r\n", position), text.size());
            else
                readProperty();
        }
        return std::move(reading);
    }

private:
    bool atEnd() const { return position == text.size(); }
    void startLine() { reading.lineStarts.push_back(position); }
    void skipLineBreak() {
        ++position;
        startLine();
    }

    void readProperty() {
        property = LibraryProperty();
        property.start = position;
        property.isStored = readKey() && readSeparator() && readValue();
        property.end = position;
        reading.properties.push_back(std::move(property));
    }

    // Each of these returns whether the file goes on with what must follow.

    bool readKey() {
        while (!atEnd() && !isAssignment(text[position]) && !isBlank(text[position])) {
            if (text[position] != '\\')
                readPlain(property.key, endsKeyRun);
            else if (!readEscape(property.key))
                break;
        }
        property.keyEnd = property.valueStart = position;
        return !atEnd();
    }

    bool readSeparator() {
        ++position;
        skipBlanks();
        property.valueStart = position;
        if (atEnd())
            return false; // lost, although "a =" has an empty value
        if (isAssignment(text[position])) {
            ++position;
            if (!atEnd() && isBlank(text[position]))
                ++position;
        }
        property.valueStart = position;
        return true;
    }

    bool readValue() {
        while (!atEnd() && !isLineBreak(text[position])) {
            if (text[position] != '\\')
                readPlain(property.value, endsValueRun);
            else if (!(isContinuation() ? skipContinuation() : readEscape(property.value)))
                return false;
        }
        if (atEnd())
            return !property.key.empty();
        skipLineBreak();
        return true;
    }

    bool isContinuation() const {
        return position + 1 < text.size() && isLineBreak(text[position + 1]);
    }

    bool skipContinuation() {
        position = std::min(text.find_first_not_of(" \r\n", position + 1), text.size());
        return !atEnd();
    }

    bool readEscape(Pieces& pieces) {
        if (position + 1 == text.size()) {
            ++position;
            return false;
        }
        const bool isUnicode = text[position + 1] == 'u';
        const std::size_t length =
            isUnicode ? std::min(unicodeLength, text.size() - position) : std::size_t{2};
        pieces.push_back(
            {isUnicode ? Piece::Kind::Unicode : Piece::Kind::Escape, position, length});
        position += length;
        return true;
    }

    template <typename Ends>
    void readPlain(Pieces& pieces, Ends ends) {
        const auto* const first = text.begin() + static_cast<std::ptrdiff_t>(position);
        const auto length = static_cast<std::size_t>(std::find_if(first, text.end(), ends) - first);
        pieces.push_back({Piece::Kind::Plain, position, length});
        position += length;
    }

    void skipBlanks() { position = std::min(text.find_first_not_of(" \t", position), text.size()); }

    const std::string_view text;
    std::size_t position = 0;
    LibraryReading reading;
    LibraryProperty property;
};

std::string_view digitsOf(std::string_view text, const Piece& piece) {
    const std::string_view escaped = text.substr(piece.offset + 2, piece.length - 2);
    return escaped.substr(0, leadingDigits(escaped));
}

} // namespace

LibraryReading readAsLibrary(std::string_view text) {
    return LibraryReader(text).read();
}

unsigned unitOf(std::string_view text, const Piece& piece) {
    return numberOf(digitsOf(text, piece));
}

bool isComplete(std::string_view text, const Piece& piece) {
    return digitsOf(text, piece).size() == 4;
}

bool splitsCharacter(std::string_view text, const Piece& piece) {
    const std::size_t end = piece.offset + piece.length;
    for (std::size_t start = piece.offset + 2; start < end; ++start) {
        if (utf8Length(text.substr(start)) > end - start)
            return true;
    }
    return false;
}

std::string decoded(std::string_view text, const Pieces& pieces) {
    std::string result;
    for (const Piece& piece : pieces) {
        if (piece.kind == Piece::Kind::Unicode)
            appendUtf8(result, unitOf(text, piece));
        else if (piece.kind == Piece::Kind::Escape)
            result += text[piece.offset + 1];
        else
            result += text.substr(piece.offset, piece.length);
    }
    return result;
}

} // namespace connector::configuration::properties::detail
