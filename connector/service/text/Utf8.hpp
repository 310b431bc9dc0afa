/// Iteration over the characters of a text that may contain invalid UTF-8. Keys, names and values
/// may hold any bytes, so invalid bytes are an ordinary case here.
#pragma once

#include <string_view>

namespace connector::service {

struct Character {
    std::string_view bytes;
    char32_t codePoint; ///< 0 if invalid
    bool valid;         ///< false for a single byte that is not part of a well-formed character
};

/// @param text  must not be empty
Character firstCharacter(std::string_view text);

template <typename Action>
void forEachCharacter(std::string_view text, Action action) {
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        action(character);
        text.remove_prefix(character.bytes.size());
    }
}

bool isUtf8(std::string_view text);

/// @return whether a terminal would act on the character, or reorder the text around it, instead of
///         showing it: control characters, line and paragraph separators, and characters that
///         change the writing direction
bool isControl(char32_t codePoint);

} // namespace connector::service
