/// Reads a property file as java.util.Properties does, and keeps the place of everything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace connector::configuration::properties::detail {

/// A key or a value in UTF-8. Only escapes can make a half of a surrogate pair; it then has the
/// three bytes that the library stores for it, and `hasHalf` tells that this is no text.
struct ConventionText {
    std::string bytes;
    bool hasHalf = false;
};

struct ConventionProperty {
    std::size_t start = 0; ///< offset of the key in the file, behind leading blanks
    ConventionText key;
    ConventionText value;
};

/// An escape that is more than the escaped character.
struct ConventionEscape {
    enum class Kind : std::uint8_t {
        Control,   ///< \t, \n, \r or \f
        Unicode,   ///< \uXXXX
        Malformed, ///< \u without four hexadecimal digits, for which the whole file is refused
    };
    Kind kind;
    std::size_t offset; ///< of the backslash in the file
};

struct ConventionReading {
    std::vector<ConventionProperty> properties;
    std::vector<ConventionEscape> escapes; ///< in ascending order of offsets
    /// In ascending order: where the reader is in the first column and nothing is pending.
    std::vector<std::size_t> lineStarts;
};

/// Reads the rules from the documentation of java.util.Properties.load(Reader). The text is what
/// a decoder of UTF-8 makes of the file, so a byte order mark at its start is not a part of it.
/// Bytes that are not UTF-8 are kept. A malformed escape is read as the letter u, so that the rest
/// can be compared all the same.
ConventionReading readAsConvention(std::string_view text);

} // namespace connector::configuration::properties::detail
