#include <connector/configuration/properties/lint/ConventionReader.hpp>

#include <connector/configuration/properties/lint/Characters.hpp>
#include <connector/configuration/properties/lint/LogicalLine.hpp>
#include <connector/configuration/properties/lint/Utf8.hpp>

#include <utility>

namespace connector::configuration::properties::detail {

namespace {

/// Puts a text together from bytes and UTF-16 code units. Two halves side by side become one
/// character.
class TextBuilder {
public:
    void append(char byte) {
        flush();
        text.bytes += byte;
    }

    void append(unsigned unit) {
        if (high != 0 && isLowSurrogate(unit)) {
            appendUtf8(text.bytes, 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00));
            high = 0;
            return;
        }
        flush();
        if (isHighSurrogate(unit))
            high = unit;
        else
            appendUnit(unit);
    }

    ConventionText take() {
        flush();
        return std::exchange(text, {});
    }

private:
    void flush() {
        if (high != 0)
            appendUnit(std::exchange(high, 0));
    }

    void appendUnit(unsigned unit) {
        text.hasHalf = text.hasHalf || isSurrogate(unit);
        appendUtf8(text.bytes, unit);
    }

    ConventionText text;
    unsigned high = 0; // a half that waits for the other one
};

class ConventionReader {
public:
    explicit ConventionReader(std::string_view text)
        : lines(text,
                text.substr(0, byteOrderMark.size()) == byteOrderMark ? byteOrderMark.size() : 0) {}

    ConventionReading read() {
        while (lines.next(line))
            readProperty();
        reading.lineStarts = lines.takeLineStarts();
        return std::move(reading);
    }

private:
    void readProperty() {
        const std::string& text = line.text();
        const std::size_t keyEnd = endOfKey(text);
        ConventionProperty property;
        property.start = line.start();
        property.key = converted(0, keyEnd);
        property.value = converted(startOfValue(text, keyEnd), text.size());
        reading.properties.push_back(std::move(property));
    }

    static std::size_t endOfKey(const std::string& text) {
        bool isEscaped = false;
        std::size_t end = 0;
        for (; end < text.size(); ++end) {
            const char c = text[end];
            if (!isEscaped && (isAssignment(c) || isWhiteSpace(c)))
                break;
            isEscaped = c == '\\' && !isEscaped;
        }
        return end;
    }

    /// Skips white space with one assignment character anywhere in it.
    static std::size_t startOfValue(const std::string& text, std::size_t start) {
        bool isAssigned = false;
        for (; start < text.size(); ++start) {
            const bool isSeparator = isAssignment(text[start]) && !isAssigned;
            if (!isSeparator && !isWhiteSpace(text[start]))
                break;
            isAssigned = isAssigned || isSeparator;
        }
        return start;
    }

    ConventionText converted(std::size_t first, std::size_t last) {
        const std::string& text = line.text();
        TextBuilder builder;
        for (std::size_t i = first; i < last; ++i) {
            if (text[i] == '\\' && i + 1 < last) {
                i += convertEscape(builder, i, last);
                continue;
            }
            builder.append(text[i]);
        }
        return builder.take();
    }

    /// @return how many characters follow the backslash
    std::size_t convertEscape(TextBuilder& builder, std::size_t i, std::size_t last) {
        using Kind = ConventionEscape::Kind;
        const std::string_view escaped = std::string_view(line.text()).substr(i, last - i);
        const char letter = escaped[1];
        const char control = controlCharacter(letter);
        if (letter == 'u' && leadingDigits(escaped.substr(2)) == 4) {
            builder.append(numberOf(escaped.substr(2, 4)));
            note(Kind::Unicode, i);
            return 5;
        }
        builder.append(control != '\0' ? control : letter);
        if (control != '\0' || letter == 'u')
            note(control != '\0' ? Kind::Control : Kind::Malformed, i);
        return 1;
    }

    void note(ConventionEscape::Kind kind, std::size_t i) {
        reading.escapes.push_back({kind, line.offsetOf(i)});
    }

    LogicalLineReader lines;
    LogicalLine line;
    ConventionReading reading;
};

} // namespace

ConventionReading readAsConvention(std::string_view text) {
    return ConventionReader(text).read();
}

} // namespace connector::configuration::properties::detail
