/// 8-bit text, character by character. Keys, names and values may hold any bytes, so what is no
/// UTF-8 is a case like every other here.
#pragma once

#include <string_view>

namespace connector::service {

struct Character {
    std::string_view bytes;
    char32_t codePoint; ///< meaningless if invalid
    bool valid;         ///< false for a single byte that belongs to no well-formed character
};

/// @return the character at the front. REQUIRES: the text is not empty
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

/// @return whether the character would move or reorder what stands around it on a terminal instead
///         of being shown: the control characters, the line and paragraph separator, and the marks
///         that turn the direction of writing
bool isControl(char32_t codePoint);

} // namespace connector::service
