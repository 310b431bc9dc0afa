#include "configuration/properties/parsing/ReferenceParser.hpp"

#include <algorithm>

namespace test {

namespace {

class ReferenceParser {
public:
    ReferenceParser(std::istream& newStream, std::map<std::string, std::string>& newOptions,
                    const ParseListeners& newListeners)
        : stream(newStream), options(newOptions), listeners(newListeners) {}

    void parse() {
        advance();
        while (stream.good())
            step();
        if (state == State::InValue && !key.empty())
            store("Parsed final property: ");
    }

private:
    enum class State { LineStart, InKey, KeyEscape, Separator, InValue, ValueEscape, Continuation };

    void advance() { stream.get(c); }

    void step();

    void store(const std::string& what) {
        options[key] = value;
        listeners.log(what + key + " = " + value);
        listeners.watcher(key);
    }

    /// Reads four characters. Their leading hexadecimal digits are the number.
    std::string unicodeEscape() {
        std::string digits;
        char next;
        for (int i = 0; i < 4 && stream.get(next); ++i)
            digits += next;
        digits.erase(std::min(digits.find_first_not_of("0123456789abcdefABCDEF"), digits.size()));
        return utf8(digits.empty() ? 0 : std::stoi(digits, nullptr, 16));
    }

    static std::string utf8(int n) {
        const auto byte = [](int bits) { return std::string(1, static_cast<char>(bits)); };
        if (n <= 0x7F)
            return byte(n);
        if (n <= 0x7FF)
            return byte(0xC0 + n / 64) + byte(0x80 + n % 64);
        return byte(0xE0 + n / 4096) + byte(0x80 + n / 64 % 64) + byte(0x80 + n % 64);
    }

    std::istream& stream;
    std::map<std::string, std::string>& options;
    const ParseListeners& listeners;
    State state = State::LineStart;
    char c = '\0';
    std::string key;
    std::string value;
};

/// One transition of the state machine.
void ReferenceParser::step() {
    switch (state) {
    case State::LineStart:
        while ((c == '\r' || c == '\n') && stream.good())
            advance();
        if (c == '!' || c == '#') {
            while (c != '\n' && c != '\r' && stream.good())
                advance();
        } else {
            state = State::InKey;
        }
        break;

    case State::InKey:
        if (c == ':' || c == '=' || c == ' ' || c == '\t') {
            advance();
            state = State::Separator;
        } else if (c == '\\') {
            advance();
            state = State::KeyEscape;
        } else {
            key += c;
            advance();
        }
        break;

    case State::KeyEscape:
        if (c == 'u')
            key += unicodeEscape();
        else
            key += c;
        advance();
        state = State::InKey;
        break;

    case State::Separator:
        if (c == ' ' || c == '\t') {
            advance();
        } else if (c == ':' || c == '=') {
            advance();
            if (c == ' ' || c == '\t')
                advance();
            state = State::InValue;
        } else {
            state = State::InValue;
        }
        break;

    case State::InValue:
        if (c == '\r' || c == '\n') {
            store("Parsed property: ");
            key = "";
            value = "";
            advance();
            state = State::LineStart;
        } else if (c == '\\') {
            advance();
            state = State::ValueEscape;
        } else {
            value += c;
            advance();
        }
        break;

    case State::ValueEscape:
        if (c == '\r' || c == '\n') {
            advance();
            state = State::Continuation;
            break;
        }
        if (c == 'u')
            value += unicodeEscape();
        else
            value += c;
        advance();
        state = State::InValue;
        break;

    case State::Continuation:
        if (c == ' ' || c == '\r' || c == '\n')
            advance();
        else
            state = State::InValue;
        break;
    }
}

} // namespace

void parseByReference(std::istream& stream, std::map<std::string, std::string>& options,
                      const ParseListeners& listeners) {
    ReferenceParser(stream, options, listeners).parse();
}

} // namespace test
