#include <connector/sources/detail/JsonReader.hpp>

#include <connector/sources/detail/DocumentBuilder.hpp>
#include <connector/sources/detail/Numbers.hpp>
#include <connector/sources/detail/Text.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace connector::sources::detail {

namespace {

/// Tracks how far the parser has read. The parser's events have no positions, so it reads through
/// this class.
class Cursor {
public:
    explicit Cursor(std::string_view newText) : text(newText) {}

    bool isAtEnd() const { return offset == text.size(); }
    char current() const { return text[offset]; }
    void advance() {
        if (text[offset++] != '\n')
            return;
        ++line;
        previousLine = std::exchange(thisLine, offset);
    }

    /// @return the place of any byte
    Place placeOf(std::size_t wanted) const { return detail::placeOf(text, wanted); }

    /// @return the start of the string whose closing quotation mark was read last
    Place startOfString() const {
        std::size_t quote = offset - 1;
        do
            quote = text.rfind('"', quote - 1);
        while (isEscaped(quote));
        return nearPlaceOf(quote);
    }

    /// @return the start of the token that was read last
    Place startOf(std::size_t length) const { return nearPlaceOf(offset - length); }

    /// @return the start of the number that was read, with or without the byte after it
    Place startOfNumber() const {
        const std::string_view read = text.substr(0, offset);
        const std::size_t last = read.find_last_of("0123456789");
        return nearPlaceOf(read.find_last_not_of("+-.0123456789eE", last) + 1);
    }

private:
    bool isEscaped(std::size_t quote) const {
        std::size_t backslashes = 0;
        while (backslashes < quote && text[quote - 1 - backslashes] == '\\')
            ++backslashes;
        return backslashes % 2 == 1;
    }

    /// @param wanted  in the current or the previous line: no token begins earlier
    Place nearPlaceOf(std::size_t wanted) const {
        const bool isBefore = wanted < thisLine;
        const std::size_t start = isBefore ? previousLine : thisLine;
        return {isBefore ? line - 1 : line, static_cast<std::uint32_t>(wanted - start + 1)};
    }

    const std::string_view text;
    std::size_t offset = 0; // of the next byte
    std::uint32_t line = 1;
    std::size_t thisLine = 0; // the starts of both lines
    std::size_t previousLine = 0;
};

/// The cursor as an input iterator: all copies advance together. The end iterator has no cursor.
class CursorIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = char;

    explicit CursorIterator(Cursor* newCursor = nullptr) : cursor(newCursor) {}

    char operator*() const { return cursor->current(); }
    CursorIterator& operator++() {
        cursor->advance();
        return *this;
    }
    CursorIterator operator++(int) { return ++*this; }
    bool operator==(const CursorIterator& other) const { return isAtEnd() == other.isAtEnd(); }
    bool operator!=(const CursorIterator& other) const { return !(*this == other); }

private:
    bool isAtEnd() const { return cursor == nullptr || cursor->isAtEnd(); }

    Cursor* cursor;
};

/// @return the parser's message, without its position and without excerpts of the text
std::string reasonOf(const std::string& message) {
    const std::size_t start = message.find(" - ");
    if (start == std::string::npos)
        return "Invalid JSON";
    return "Invalid JSON: " +
           message.substr(start + 3, message.find("; last read", start) - start - 3);
}

class Events : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit Events(Cursor& newCursor) : cursor(newCursor) {}

    bool null() override {
        builder.null(cursor.startOf(4));
        return true;
    }
    bool boolean(bool value) override {
        builder.scalar(value, cursor.startOf(value ? 4 : 5));
        return true;
    }
    bool number_integer(number_integer_t value) override { return integer(std::to_string(value)); }
    bool number_unsigned(number_unsigned_t value) override {
        return integer(std::to_string(value));
    }
    /// Also called for integers that do not fit into 64 bits.
    bool number_float(number_float_t value, const string_t& text) override {
        if (text.find_first_of(".eE") == std::string::npos)
            return integer(text);
        builder.scalar(value, cursor.startOfNumber());
        return true;
    }
    bool string(string_t& value) override {
        const Place place = cursor.startOfString();
        builder.scalar(std::move(value), place);
        return true;
    }
    bool binary(binary_t&) override { return false; } // JSON has none
    bool start_object(std::size_t) override {
        builder.beginObject(cursor.startOf(1));
        return true;
    }
    bool key(string_t& value) override {
        const Place place = cursor.startOfString();
        builder.key(std::move(value), place);
        return true;
    }
    bool end_object() override { return end(); }
    bool start_array(std::size_t) override {
        builder.beginArray(cursor.startOf(1));
        return true;
    }
    bool end_array() override { return end(); }

    /// @param position  of the last byte of the invalid token, from 1
    bool parse_error(std::size_t position, const std::string&,
                     const nlohmann::detail::exception& error) override {
        if (error.id == 406)
            throw DocumentError(cursor.startOfNumber(), "The number is beyond the range of double");
        throw DocumentError(cursor.placeOf(std::max<std::size_t>(position, 1) - 1),
                            reasonOf(error.what()));
    }

    Document take() { return builder.take(); }

private:
    bool integer(const std::string& text) {
        const Place place = cursor.startOfNumber();
        const auto value = decimalInteger(text);
        if (!value)
            throw DocumentError(place, "The integer is not exact as a double");
        builder.scalar(*value, place);
        return true;
    }

    bool end() {
        builder.end();
        return true;
    }

    Cursor& cursor;
    DocumentBuilder builder;
};

} // namespace

Document readJson(std::string_view text) {
    // The parser takes a zero byte for the end of the text.
    if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos)
        throw DocumentError(placeOf(text, zero), "Invalid JSON: control character");
    Cursor cursor(text);
    Events events(cursor);
    nlohmann::json::sax_parse(CursorIterator(&cursor), CursorIterator(), &events);
    return events.take();
}

} // namespace connector::sources::detail
