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

/// Appends a code unit in the bit layout of UTF-8. A surrogate gets three bytes of its own and is not
/// paired with its neighbour: what a file says with two escapes stays two, and is for the reader of
/// the value to judge.
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
    // Only a value that has begun makes a property here. Whatever else the input leaves behind, even
    // "key=", is dropped, and so is an empty key, although both are stored in the middle of a file.
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
    // Only here is a comment one: blanks before it make it the value of an empty key.
    if (current != '!' && current != '#')
        return takePlainLines() ? State::LineStart : State::InKey;
    do {
        cursor.skipUntil(isLineBreak);
        advance();
    } while (cursor.good() && !isLineBreak(current));
    return State::LineStart;
}

/// Takes the lines from the current character on that need no states.
/// @return whether there were any; `current` is then what comes behind them
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
    // A line break, too, goes into the key: only a value can be continued on the next line.
    appendEscaped(key);
    return State::InKey;
}

PropertyParser::State PropertyParser::separator() {
    if (isBlank(current)) {
        advance();
        return State::Separator;
    }
    if (isAssignment(current)) {
        // Not the separator itself, which was consumed with the key, but one behind it: it belongs to
        // the separator, and so does a single blank after it. More are the value's.
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
    // Spaces and line breaks, blank lines therefore included, but not tabs.
    if (current == ' ' || isLineBreak(current)) {
        advance();
        return State::Continuation;
    }
    return State::InValue;
}

/// Every escape but that of a code unit stands for the escaped character itself: "\t" is a "t".
void PropertyParser::appendEscaped(std::string& text) {
    if (current == 'u')
        appendUnicodeEscape(text);
    else
        text.push_back(current);
    advance();
}

/// Takes four characters, whatever they are, and counts the hexadecimal digits that they begin with;
/// none give U+0000. What the end of the input cuts short counts as far as it goes.
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
