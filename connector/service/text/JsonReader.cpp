#include <connector/service/text/JsonReader.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string>

namespace connector::service {

namespace {

constexpr std::string_view digits = "0123456789";

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

[[noreturn]] void fail(const std::string& reason) {
    throw std::invalid_argument("Text is not valid JSON: " + reason);
}

/// The parser reads through this class, for two reasons. Its events have no positions. And it
/// refuses the whole text if a number is beyond the range of double. So it gets only the first two
/// digits of each run of digits outside of strings. Two digits are enough to check the syntax of a
/// number, and the handler gets the number from the text.
class Cursor {
public:
    explicit Cursor(std::string_view newText) : text(newText) {}

    bool isAtEnd() const { return offset == text.size(); }
    char current() const { return text[offset]; }
    std::size_t position() const { return offset; }

    void advance() {
        const char byte = text[offset++];
        if (byte == '"' && !isEscaped)
            isInString = !isInString;
        isEscaped = isInString && byte == '\\' && !isEscaped;
        if (!isInString && isDigit(byte) && offset > 1 && isDigit(text[offset - 2]))
            offset = std::min(text.find_first_not_of(digits, offset), text.size());
    }

    /// @return the number that the parser has read; it also reads the byte after a number
    JsonNumber number() const {
        const std::string_view read = text.substr(0, offset);
        const std::size_t last = read.find_last_of(digits);
        const std::size_t start = read.find_last_not_of("+-.0123456789eE", last) + 1;
        return {text.substr(start, last + 1 - start)};
    }

    std::size_t endOf(const JsonNumber& number) const {
        return static_cast<std::size_t>(number.text.data() - text.data()) + number.text.size();
    }

private:
    const std::string_view text;
    std::size_t offset = 0; // of the next byte
    bool isInString = false;
    bool isEscaped = false;
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
    if (start == message.npos)
        return "invalid syntax";
    return message.substr(start + 3, message.find("; last read", start) - start - 3);
}

/// Passes the parser's events on to a handler.
class Events : public nlohmann::json_sax<nlohmann::json> {
public:
    Events(const Cursor& newCursor, JsonHandler& newHandler)
        : cursor(newCursor), handler(newHandler) {}

    bool null() override { return scalar(std::monostate(), cursor.position()); }
    bool boolean(bool value) override { return scalar(value, cursor.position()); }
    bool number_integer(number_integer_t) override { return number(); }
    bool number_unsigned(number_unsigned_t) override { return number(); }
    bool number_float(number_float_t, const string_t&) override { return number(); }
    bool string(string_t& value) override {
        return scalar(std::string_view(value), cursor.position());
    }
    bool binary(binary_t&) override { return false; } // JSON has none
    bool start_object(std::size_t) override { return begin(JsonContainer::Object); }
    bool start_array(std::size_t) override { return begin(JsonContainer::Array); }
    bool end_object() override { return end(); }
    bool end_array() override { return end(); }
    bool key(string_t& value) override {
        handler.name(value, cursor.position());
        return true;
    }
    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& error) override {
        fail(isComplete ? "Excess characters found after JSON end." : reasonOf(error.what()));
    }

private:
    bool number() {
        const JsonNumber value = cursor.number();
        return scalar(value, cursor.endOf(value));
    }
    bool scalar(const JsonScalar& value, std::size_t position) {
        handler.scalar(value, position);
        isComplete = depth == 0;
        return true;
    }
    bool begin(JsonContainer container) {
        ++depth;
        handler.begin(container);
        return true;
    }
    bool end() {
        handler.end(cursor.position());
        isComplete = --depth == 0;
        return true;
    }

    const Cursor& cursor;
    JsonHandler& handler;
    std::size_t depth = 0;
    bool isComplete = false;
};

} // namespace

void readJson(std::string_view text, JsonHandler& handler) {
    if (text.find('\0') != text.npos) // which the parser would take for the end of the text
        fail("unescaped control character");
    if (text.substr(0, 3) == "\xEF\xBB\xBF") // which the parser would skip
        fail("byte order mark");
    Cursor cursor(text);
    Events events(cursor, handler);
    nlohmann::json::sax_parse(CursorIterator(&cursor), CursorIterator(), &events);
}

} // namespace connector::service
