#include <connector/configuration/properties/PropertyParser.hpp>

#include <connector/configuration/properties/PlainLine.hpp>

#include <utility>

namespace connector::configuration::detail {

namespace {

constexpr bool isLineBreak(char c) {
    return c == '\r' || c == '\n';
}
constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
constexpr bool isAssignment(char c) {
    return c == ':' || c == '=';
}
constexpr bool endsKeyRun(char c) {
    return isAssignment(c) || isBlank(c) || c == '\\';
}
constexpr bool endsValueRun(char c) {
    return isLineBreak(c) || c == '\\';
}

/// @return the value of a hexadecimal digit, or -1
constexpr int digitValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

/// Appends a code unit in the bit layout of UTF-8. A surrogate becomes three bytes and is not
/// paired with its neighbour. That is intended: two escapes stay two, and the reader of the value
/// decides what they mean.
void appendUtf8(std::string& text, unsigned unit) {
    const auto append = [&text](unsigned byte) { text.push_back(static_cast<char>(byte)); };
    if (unit <= 0x7F) {
        append(unit);
    } else if (unit <= 0x7FF) {
        append(0xC0 | (unit >> 6));
        append(0x80 | (unit & 0x3F));
    } else {
        append(0xE0 | (unit >> 12));
        append(0x80 | ((unit >> 6) & 0x3F));
        append(0x80 | (unit & 0x3F));
    }
}

} // namespace

PropertyParser::PropertyParser(StreamCursor& newCursor, Store newStore)
    : cursor(newCursor), store(std::move(newStore)) {
}

void PropertyParser::parse() {
    advance();
    while (cursor.good())
        step();
    // Intended: at the end of the input a property is stored only if its value has begun and its
    // key is not empty. A last "key=" is dropped, although it is stored in the middle of a file.
    if (state == State::InValue && !key.empty())
        store(key, value, true);
}

void PropertyParser::step() {
    switch (state) {
    case State::LineStart:
        state = lineStart();
        break;
    case State::InKey:
        state = inKey();
        break;
    case State::KeyEscape:
        state = keyEscape();
        break;
    case State::Separator:
        state = separator();
        break;
    case State::InValue:
        state = inValue();
        break;
    case State::ValueEscape:
        state = valueEscape();
        break;
    case State::Continuation:
        state = continuation();
        break;
    }
}

PropertyParser::State PropertyParser::lineStart() {
    while (isLineBreak(current) && cursor.good())
        advance();
    // A comment starts in the first column only. Behind blanks it is the value of an empty key.
    if (current != '!' && current != '#')
        return takePlainLines() ? State::LineStart : State::InKey;
    do {
        cursor.skipUntil(isLineBreak);
        advance();
    } while (cursor.good() && !isLineBreak(current));
    return State::LineStart;
}

/// Reads the plain lines that start at the current character.
/// @return whether there were any; `current` is then the first character behind them
bool PropertyParser::takePlainLines() {
    if (!cursor.stepBack())
        return false;
    bool any = false;
    for (PlainLine line; (line = plainLine(cursor.ahead())).length != 0; any = true) {
        cursor.skip(line.length);
        store(line.key, line.value, false);
    }
    advance();
    return any;
}

PropertyParser::State PropertyParser::inKey() {
    if (isAssignment(current) || isBlank(current)) {
        advance();
        return State::Separator;
    }
    if (current == '\\') {
        advance();
        return State::KeyEscape;
    }
    key.push_back(current);
    cursor.appendUntil(endsKeyRun, key);
    advance();
    return State::InKey;
}

PropertyParser::State PropertyParser::keyEscape() {
    // A line break goes into the key as well: only a value can be continued on the next line.
    appendEscaped(key);
    return State::InKey;
}

PropertyParser::State PropertyParser::separator() {
    if (isBlank(current)) {
        advance();
        return State::Separator;
    }
    if (isAssignment(current)) {
        // The first separator character was consumed with the key. A second one, and a single blank
        // after it, belong to the separator. Further blanks belong to the value.
        advance();
        if (isBlank(current))
            advance();
    }
    return State::InValue;
}

PropertyParser::State PropertyParser::inValue() {
    if (isLineBreak(current)) {
        store(key, value, false);
        key.clear();
        value.clear();
        advance();
        return State::LineStart;
    }
    if (current == '\\') {
        advance();
        return State::ValueEscape;
    }
    value.push_back(current);
    cursor.appendUntil(endsValueRun, value);
    advance();
    return State::InValue;
}

PropertyParser::State PropertyParser::valueEscape() {
    if (isLineBreak(current)) {
        advance();
        return State::Continuation;
    }
    appendEscaped(value);
    return State::InValue;
}

PropertyParser::State PropertyParser::continuation() {
    // Skips spaces and line breaks, and so blank lines, but not tabs.
    if (current == ' ' || isLineBreak(current)) {
        advance();
        return State::Continuation;
    }
    return State::InValue;
}

/// Every escape except \u stands for the escaped character itself: "\t" is a "t", not a tab.
void PropertyParser::appendEscaped(std::string& text) {
    if (current == 'u')
        appendUnicodeEscape(text);
    else
        text.push_back(current);
    advance();
}

/// Reads four characters, whatever they are, and converts the hexadecimal digits at their start. No
/// digits give U+0000. At the end of the input, the digits that were read count.
void PropertyParser::appendUnicodeEscape(std::string& text) {
    unsigned unit = 0;
    bool inDigits = true;
    for (int i = 0; i < 4; ++i) {
        char c;
        if (!cursor.next(c))
            break;
        const int digit = digitValue(c);
        inDigits = inDigits && digit >= 0;
        if (inDigits)
            unit = unit * 16 + static_cast<unsigned>(digit);
    }
    appendUtf8(text, unit);
}

} // namespace connector::configuration::detail
