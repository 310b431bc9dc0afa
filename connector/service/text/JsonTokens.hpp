/// The tokens of a JSON text, for what the parser does not keep: where things stand.
#pragma once

#include <cstddef>
#include <string_view>

namespace connector::service {

/// A token is a string, a single character of "{}[],:", or a run of everything else. Any text falls
/// into tokens; whether it is JSON is the parser's question.
class JsonTokens {
public:
    explicit JsonTokens(std::string_view newText) : text(newText) { next(); }

    bool atEnd() const { return token.empty(); }
    std::string_view current() const { return token; }
    std::size_t start() const { return position; }
    std::size_t end() const { return position + token.size(); }

    /// The character, if the token is a single one of "{}[],:"; a quote for a string; else a blank.
    char kind() const;

    void next();

private:
    std::size_t lengthOfToken() const;
    std::size_t lengthOfString() const;

    const std::string_view text;
    std::string_view token;
    std::size_t position = 0;
};

} // namespace connector::service
