/// The tokens of a JSON text with their positions, which Poco's parser does not report.
#pragma once

#include <cstddef>
#include <string_view>

namespace connector::service {

/// A token is a string, one of the characters "{}[],:", or a run of any other characters except
/// whitespace. Every text can be split into such tokens; whether it is JSON is for the parser to
/// decide.
class JsonTokens {
public:
    explicit JsonTokens(std::string_view newText) : text(newText) { next(); }

    bool atEnd() const { return token.empty(); }
    std::string_view current() const { return token; }

    /// @return the positions of the current token and of the byte after it
    std::size_t start() const { return position; }
    std::size_t end() const { return position + token.size(); }

    /// @return the current token if it is one of the characters "{}[],:", a quotation mark if it is
    ///         a string, a space if it is anything else
    char kind() const;

    void next();

private:
    std::size_t tokenLength() const;
    std::size_t stringLength() const;

    const std::string_view text;
    std::string_view token;
    std::size_t position = 0;
};

} // namespace connector::service
