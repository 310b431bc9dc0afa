/// Places in a TOML file.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace connector::sources::detail {

/// Turns columns that count characters, as the parser gives them, into columns that count bytes.
/// Places of one line that are asked for in their order cost one walk over the line together.
class TomlPlaces {
public:
    /// @param newText  UTF-8
    explicit TomlPlaces(std::string_view newText);

    Place of(std::uint32_t line, std::uint32_t character);

    /// @return the text from a place on
    std::string_view from(Place place) const;

private:
    const std::string_view text;
    std::vector<std::size_t> lines; // where they begin
    std::uint32_t lastLine = 0;     // the place that was asked for last
    std::uint32_t lastCharacter = 1;
    std::size_t lastOffset = 0; // in the text
};

} // namespace connector::sources::detail
