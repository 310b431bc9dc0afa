/// Reads a property file as PropertyParser does, and keeps the place of everything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace connector::configuration::properties::detail {

/// A part of a key or a value, and where it is in the file.
struct Piece {
    enum class Kind : std::uint8_t {
        Plain,   ///< characters that stand for themselves
        Escape,  ///< a backslash and a character that is no u
        Unicode, ///< \u and at most four characters; fewer only at the end of the file
    };
    Kind kind;
    std::size_t offset;
    std::size_t length;
};

using Pieces = std::vector<Piece>;

/// A property as the library reads it. The places are offsets in the file.
struct LibraryProperty {
    std::size_t start = 0;      ///< of the key
    std::size_t keyEnd = 0;     ///< where the separator is
    std::size_t valueStart = 0; ///< behind the separator
    std::size_t end = 0;        ///< behind the line break, of CR LF behind the CR
    Pieces key;
    Pieces value;          ///< without continuations: these are between the pieces
    bool isStored = false; ///< false when the end of the file came too early
};

struct LibraryReading {
    std::vector<LibraryProperty> properties;
    /// In ascending order: where the reader is in the first column and nothing is pending.
    std::vector<std::size_t> lineStarts;
};

LibraryReading readAsLibrary(std::string_view text);

/// @return the code unit of a Unicode piece
unsigned unitOf(std::string_view text, const Piece& piece);

/// @return whether a Unicode piece has its four digits
bool isComplete(std::string_view text, const Piece& piece);

/// @return whether a Unicode piece ends inside of a character, whose rest is then no UTF-8
bool splitsCharacter(std::string_view text, const Piece& piece);

/// @return the key or the value that the library stores
std::string decoded(std::string_view text, const Pieces& pieces);

} // namespace connector::configuration::properties::detail
