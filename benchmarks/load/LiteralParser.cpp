#include "LiteralParser.hpp"

#include <algorithm>

namespace bench {

namespace {

using connector::configuration::OptionValue;

class LiteralParser {
public:
    LiteralParser(std::istream& newStream, std::unordered_map<std::string, OptionValue>& newTable)
        : stream(newStream), table(newTable) {}

    void parse() {
        advance();
        while (stream.good())
            (this->*state)();
        if (state == &LiteralParser::inValue && !key.empty())
            store();
    }

private:
    using State = void (LiteralParser::*)();

    template <typename... Chars>
    bool at(Chars... oneOf) const {
        return ((current == oneOf) || ...);
    }
    void advance() { stream.get(current); }
    void advanceTo(State next) {
        advance();
        state = next;
    }

    void lineStart() {
        while (at('\r', '\n') && stream.good())
            advance();
        if (!at('!', '#')) {
            state = &LiteralParser::inKey;
            return;
        }
        while (!at('\r', '\n') && stream.good())
            advance();
    }

    void inKey() {
        if (at(':', '=', ' ', '\t'))
            return advanceTo(&LiteralParser::separator);
        if (at('\\'))
            return advanceTo(&LiteralParser::keyEscape);
        key += current;
        advance();
    }

    void keyEscape() {
        appendEscaped(key);
        advanceTo(&LiteralParser::inKey);
    }

    void separator() {
        if (at(' ', '\t'))
            return advance();
        if (at(':', '=')) {
            advance();
            if (at(' ', '\t'))
                advance();
        }
        state = &LiteralParser::inValue;
    }

    void inValue() {
        if (at('\r', '\n')) {
            store();
            key.clear();
            value.clear();
            return advanceTo(&LiteralParser::lineStart);
        }
        if (at('\\'))
            return advanceTo(&LiteralParser::valueEscape);
        value += current;
        advance();
    }

    void valueEscape() {
        if (at('\r', '\n'))
            return advanceTo(&LiteralParser::continuation);
        appendEscaped(value);
        advanceTo(&LiteralParser::inValue);
    }

    void continuation() {
        if (at(' ', '\r', '\n'))
            return advance();
        state = &LiteralParser::inValue;
    }

    void appendEscaped(std::string& text) {
        if (!at('u')) {
            text += current;
            return;
        }
        std::string digits(4, '\0');
        stream.read(digits.data(), 4);
        digits.resize(static_cast<std::size_t>(stream.gcount()));
        digits.resize(std::min(digits.find_first_not_of("0123456789abcdefABCDEF"), digits.size()));
        appendUtf8(text, digits.empty() ? 0 : std::stoi(digits, nullptr, 16));
    }

    static void appendUtf8(std::string& text, int unit) {
        if (unit <= 0x7F) {
            text += static_cast<char>(unit);
            return;
        }
        if (unit <= 0x7FF) {
            text += static_cast<char>(0xC0 | unit >> 6);
        } else {
            text += static_cast<char>(0xE0 | unit >> 12);
            text += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
        }
        text += static_cast<char>(0x80 | (unit & 0x3F));
    }

    void store() { table[key] = value; }

    std::istream& stream;
    std::unordered_map<std::string, OptionValue>& table;
    State state = &LiteralParser::lineStart;
    char current = '\0';
    std::string key;
    std::string value;
};

} // namespace

void parseLiterally(std::istream& stream, std::unordered_map<std::string, OptionValue>& table) {
    LiteralParser(stream, table).parse();
}

} // namespace bench
