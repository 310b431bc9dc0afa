#include <connector/service/text/JsonValidation.hpp>

#include <connector/service/text/JsonTokens.hpp>

#include <Poco/JSON/Parser.h>

#include <algorithm>
#include <string>
#include <vector>

namespace connector::service {

namespace {

/// How many levels of nesting the parser gets at a time. A larger number means fewer parser runs,
/// but deeper recursion.
constexpr std::size_t levelsPerPiece = 32;

bool opens(char kind) {
    return kind == '{' || kind == '[';
}

bool closes(char kind) {
    return kind == '}' || kind == ']';
}

/// Validates a text from the inside out: an object or array with enough levels inside it is parsed
/// on its own and then replaced by the number 0 in the text around it.
class PiecewiseValidator {
public:
    void add(const JsonTokens& tokens) {
        if (opens(tokens.kind()))
            open.push_back({unchecked.size(), 1});
        unchecked += tokens.current();
        unchecked += ' '; // keeps neighbouring tokens apart
        if (closes(tokens.kind()) && !open.empty())
            close();
    }

    /// Validates what is left. A bracket that is still open is an error that the parser reports.
    void finish() const { parse(unchecked); }

private:
    struct Bracket {
        std::size_t start;  // position in `unchecked`
        std::size_t levels; // of nesting, counting this one and those inside
    };

    static void parse(const std::string& piece) {
        Poco::JSON::Parser parser;
        parser.setDepth(levelsPerPiece + 1);
        parser.parse(piece);
    }

    /// Does not check that the brackets match, because the parser does.
    void close() {
        Bracket closed = open.back();
        open.pop_back();
        if (open.empty())
            return; // finish() parses the outermost one
        if (closed.levels == levelsPerPiece) {
            parse(unchecked.substr(closed.start));
            unchecked.replace(closed.start, unchecked.npos, "0 ");
            closed.levels = 0;
        }
        open.back().levels = std::max(open.back().levels, closed.levels + 1);
    }

    std::string unchecked; // tokens, each followed by a space
    std::vector<Bracket> open;
};

} // namespace

bool isNestedDeeper(std::string_view text, std::size_t depth) {
    std::size_t current = 0;
    for (JsonTokens tokens(text); !tokens.atEnd(); tokens.next()) {
        if (opens(tokens.kind()) && ++current > depth)
            return true;
        if (closes(tokens.kind()) && current > 0)
            --current;
    }
    return false;
}

void validateJson(std::string_view text) {
    PiecewiseValidator pieces;
    for (JsonTokens tokens(text); !tokens.atEnd(); tokens.next())
        pieces.add(tokens);
    pieces.finish();
}

} // namespace connector::service
