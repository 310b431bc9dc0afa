#include <connector/sources/detail/TomlLimits.hpp>

#include <connector/sources/detail/Document.hpp>
#include <connector/sources/detail/Text.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace connector::sources::detail {

namespace {

class Scan {
public:
    explicit Scan(std::string_view newText) : text(newText) {}

    void run() {
        while (offset < text.size())
            step();
    }

private:
    struct Open {
        bool isArray;
        std::size_t depth; // that it adds
    };

    void step() {
        switch (const char c = text[offset]) {
        case '#':
            offset = std::min(text.find('\n', offset), text.size());
            return;
        case '"':
        case '\'':
            beginScalar();
            skipString(c);
            return;
        case '\n':
            endLine();
            break;
        case ' ':
        case '\t':
        case '\r':
            break;
        default:
            sign(c);
        }
        ++offset;
    }

    void sign(char c) {
        switch (c) {
        case '.':
            ++dots;
            checkDepth();
            break;
        case '=':
            keyDots = std::exchange(dots, 0);
            awaitsValue = true;
            break;
        case '[':
        case '{':
            begin(c == '[');
            break;
        case ']':
        case '}':
            end();
            break;
        case ',':
            dots = 0;
            awaitsValue = !open.empty() && open.back().isArray;
            break;
        default:
            beginScalar();
        }
    }

    void begin(bool isArray) {
        if (!awaitsValue) {
            isHeader = open.empty();
            return;
        }
        open.push_back({isArray, 1 + std::exchange(keyDots, 0)});
        depth += open.back().depth;
        awaitsValue = isArray;
        checkDepth();
    }

    void end() {
        awaitsValue = false;
        dots = 0;
        if (open.empty())
            return;
        depth -= open.back().depth;
        open.pop_back();
    }

    void endLine() {
        if (!open.empty())
            return;
        if (isHeader)
            headerDots = dots;
        isHeader = false;
        awaitsValue = false;
        dots = 0;
    }

    void beginScalar() {
        if (!awaitsValue)
            return;
        awaitsValue = false;
        dots = 0;
        if (++values > mostValues)
            throw DocumentError(placeOf(text, offset), "More than 1000000 values");
    }

    /// Three times the limit: a header, a key below it and the value can each reach the limit.
    void checkDepth() const {
        if (headerDots + depth + keyDots + dots > 3 * greatestDepth)
            throw DocumentError(placeOf(text, offset), "Nested deeper than 64");
    }

    void skipString(char quote) {
        const std::string_view three = quote == '"' ? "\"\"\"" : "'''";
        const bool isMultiline = text.substr(offset, 3) == three;
        const std::string_view mark = isMultiline ? three : three.substr(0, 1);
        for (offset += mark.size(); offset < text.size(); ++offset) {
            if (text.substr(offset, mark.size()) == mark) {
                offset += mark.size();
                return;
            }
            if (!isMultiline && text[offset] == '\n')
                return; // not closed: the parser reports it
            if (text[offset] == '\\' && quote == '"')
                ++offset;
        }
        offset = std::min(offset, text.size());
    }

    const std::string_view text;
    std::size_t offset = 0;
    std::vector<Open> open; // arrays and inline tables
    std::size_t depth = 0;  // of these
    std::size_t headerDots = 0;
    std::size_t keyDots = 0; // of the key before the last =
    std::size_t dots = 0;    // since then
    std::size_t values = 0;
    bool isHeader = false;
    bool awaitsValue = false;
};

} // namespace

void checkTomlLimits(std::string_view text) {
    Scan(text).run();
}

} // namespace connector::sources::detail
