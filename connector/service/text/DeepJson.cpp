#include <connector/service/text/DeepJson.hpp>

#include <connector/service/text/JsonTokens.hpp>

#include <Poco/JSON/Parser.h>

#include <algorithm>
#include <string>
#include <vector>

namespace connector::service {

namespace {

/// Of the pieces that the parser gets. The higher they are, the fewer they are.
constexpr std::size_t pieceHeight = 32;

bool opens(char kind) {
    return kind == '{' || kind == '[';
}

bool closes(char kind) {
    return kind == '}' || kind == ']';
}

/// A text that is checked from the inside: a bracket and what it holds, once that is high enough, is
/// parsed alone, and stands as a 0 in what holds it.
class Pieces {
public:
    void add(const JsonTokens& tokens) {
        if (opens(tokens.kind()))
            open.push_back({unchecked.size(), 1});
        unchecked += tokens.current();
        unchecked += ' '; // what were two tokens must not become one
        if (closes(tokens.kind()) && !open.empty())
            close();
    }

    /// Nothing is left open, or it is wrong.
    void finish() const { parse(unchecked); }

private:
    struct Bracket {
        std::size_t start;  // in what is unchecked
        std::size_t height; // of what it holds, and itself
    };

    static void parse(const std::string& piece) {
        Poco::JSON::Parser parser;
        parser.setDepth(pieceHeight + 1);
        parser.parse(piece);
    }

    /// Those that do not match go to the parser all the same, which finds that.
    void close() {
        Bracket closed = open.back();
        open.pop_back();
        if (open.empty())
            return; // for the end
        if (closed.height == pieceHeight) {
            parse(unchecked.substr(closed.start));
            unchecked.replace(closed.start, unchecked.npos, "0 ");
            closed.height = 0;
        }
        open.back().height = std::max(open.back().height, closed.height + 1);
    }

    std::string unchecked; // its tokens, a blank behind each
    std::vector<Bracket> open;
};

} // namespace

bool isDeeper(std::string_view text, std::size_t depth) {
    std::size_t current = 0;
    for (JsonTokens tokens(text); !tokens.atEnd(); tokens.next()) {
        if (opens(tokens.kind()) && ++current > depth)
            return true;
        if (closes(tokens.kind()) && current > 0)
            --current;
    }
    return false;
}

void requireJson(std::string_view text) {
    Pieces pieces;
    for (JsonTokens tokens(text); !tokens.atEnd(); tokens.next())
        pieces.add(tokens);
    pieces.finish();
}

} // namespace connector::service
