/// Positions in a TOML file.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace connector::sources::detail {

/// Converts the parser's columns, which count characters, to columns that count bytes. Queries for
/// positions of one line in ascending order walk over the line only once in total.
class TomlPlaces {
public:
    /// @param newText  UTF-8
    explicit TomlPlaces(std::string_view newText);

    Place of(std::uint32_t line, std::uint32_t character);

    /// @return the text from a position on
    std::string_view from(Place place) const;

private:
    const std::string_view text;
    std::vector<std::size_t> lines; // their starts
    std::uint32_t lastLine = 0;     // of the last query
    std::uint32_t lastCharacter = 1;
    std::size_t lastOffset = 0; // in the text
};

} // namespace connector::sources::detail
