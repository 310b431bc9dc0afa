/// The state machine that parses property files. docs/property-files.md has the rules for users.
/// Several differ from the usual conventions; all of them are intended.
#pragma once

#include <connector/configuration/properties/StreamCursor.hpp>

#include <functional>
#include <istream>
#include <string>
#include <string_view>

namespace connector::configuration::detail {

/// Parses one stream. A state is named for where in a line the current character stands:
///
///                    .---------------- line break ----------------.
///                    v                                            |
///                LineStart --> InKey --blank : =--> Separator --> InValue
///                              ^  |                               ^  |  ^
///                              |  \                               |  \  |
///                            KeyEscape                   ValueEscape    |
///                                                             '--line break--> Continuation
///
/// No input is an error: every state accepts every character. A state function is called with a
/// good stream and `current`; after each call the loop ends if the stream is no longer good.
class PropertyParser {
public:
    /// Receives each property when it is complete, in the order of the input. The cursor then
    /// stands behind the last character that was read. It may throw, and may let other code use the
    /// stream: see StreamCursor, after which the texts are no longer valid.
    using Store =
        std::function<void(std::string_view key, std::string_view value, bool atEndOfInput)>;

    /// @param newCursor  must outlive the parser
    PropertyParser(StreamCursor& newCursor, Store newStore);

    /// Parses to the end of the input, or to the first read error, which counts as the end.
    void parse();

private:
    enum class State {
        LineStart,    ///< at the first character of a line, or at the line breaks before it
        InKey,        ///< in the key, which continues across line breaks up to a separator
        KeyEscape,    ///< after a backslash in the key
        Separator,    ///< between key and value
        InValue,      ///< in the value
        ValueEscape,  ///< after a backslash in the value
        Continuation, ///< at the start of a line that continues a value
    };

    void step();
    State lineStart();
    bool takePlainLines();
    State inKey();
    State keyEscape();
    State separator();
    State inValue();
    State valueEscape();
    State continuation();

    /// Reads the next character into `current`, which keeps its value when there is none.
    void advance() { cursor.next(current); }
    void appendEscaped(std::string& text);
    void appendUnicodeEscape(std::string& text);

    StreamCursor& cursor;
    const Store store;
    State state = State::LineStart;
    char current = '\0';
    std::string key;
    std::string value;
};

} // namespace connector::configuration::detail
